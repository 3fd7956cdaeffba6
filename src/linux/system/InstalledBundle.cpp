#include "linux/system/InstalledBundle.h"

#include <spawn.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <utility>

#include "linux/system/OwnBundle.h"
#include "linux/system/OwnEnvironment.h"

namespace sunpane {
namespace {

namespace fs = std::filesystem;

constexpr const char* ending = ".app";

// The kernel tells the running program's path without links, so that a folder to compare it with must have none either.
std::string withoutLinks(const fs::path& folder) {
    std::error_code error;
    const fs::path resolved = fs::weakly_canonical(folder, error);
    return (error ? folder : resolved).string();
}

// As std::filesystem copies a folder, but one that is read-only, as on a disk image, into one that can be filled.
void copyTree(const fs::path& from, const fs::path& to, std::error_code& error) {
    fs::create_directory(to, error);
    for (auto entry = fs::directory_iterator(from, error); !error && entry != fs::directory_iterator();
         entry.increment(error)) {
        const fs::path target = to / entry->path().filename();
        if (entry->is_directory() && !entry->is_symlink()) {
            copyTree(entry->path(), target, error);
        } else {
            fs::copy(entry->path(), target, fs::copy_options::copy_symlinks, error);
        }
        if (error) return;
    }
}

}  // namespace

InstalledBundle::InstalledBundle(std::string program, std::string home)
    : program_(std::move(program)), home_(std::move(home)), path_(bundlePathOf(program_)) {}

std::string InstalledBundle::runningProgram() {
    std::error_code error;
    std::string program = fs::read_symlink("/proc/self/exe", error).string();
    // An upgrade put another file in its place.
    constexpr std::string_view mark = " (deleted)";
    if (program.ends_with(mark)) program.resize(program.size() - mark.size());
    return program;
}

std::vector<std::string> InstalledBundle::applicationFolders() const {
    const fs::path place = fs::path(installedPath()).parent_path();
    return {"/usr/", "/opt/",  // "/usr/local/" is in the first
            withoutLinks(home_ + "/.local") + "/", withoutLinks(place) + "/"};
}

std::string InstalledBundle::installedPath() const {
    return home_ + "/.local/lib/Dawnly.app";
}

bool InstalledBundle::install() {
    if (!path_.ends_with(ending)) return false;
    const fs::path target = installedPath();
    const fs::path fresh = target.string() + ".new";
    const fs::path old = target.string() + ".old";
    std::error_code error;
    fs::create_directories(target.parent_path(), error);
    fs::remove_all(fresh, error);
    fs::remove_all(old, error);
    copyTree(path_, fresh, error);
    if (!error) {
        std::error_code absent;
        fs::rename(target, old, absent);
        fs::rename(fresh, target, error);
        if (error && !absent) fs::rename(old, target, absent);
    }
    std::error_code ignored;
    fs::remove_all(error ? fresh : old, ignored);
    return !error;
}

void InstalledBundle::openInstalled() {
    const auto inBundle = fs::path(program_).lexically_relative(path_);
    const std::string program = (fs::path(installedPath()) / inBundle).string();
    // In a session of its own, so that what ends this program's terminal does not end it.
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSID);
    pid_t started = 0;
    std::string argument = program;
    char* arguments[] = {argument.data(), nullptr};
    posix_spawn(&started, program.c_str(), nullptr, &attributes, arguments, environmentForOthers().data());
    posix_spawnattr_destroy(&attributes);
}

}  // namespace sunpane
