#include "cli/DefaultsCommand.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <nlohmann/json.hpp>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "base/AppIdentity.h"
#include "base/Text.h"
#include "cli/FolderPath.h"
#include "cli/TerminalText.h"
#include "core/briefing/FolderBriefingProvider.h"
#include "notch/PinnedSpace.h"
#include "platform/Screens.h"

namespace sunpane::cli {
namespace {

using Value = UserDefaults::Value;

// In the order of the alternatives of `Value`.
constexpr std::array<std::string_view, std::variant_size_v<Value>> typeOptions{"--bool", "--int", "--float", "--string",
                                                                               "--array"};
constexpr std::size_t stringType = 3;
constexpr std::size_t arrayType = 4;

struct Request {
    bool asJson = false;
    std::optional<std::size_t> type;
    std::vector<std::string> words;
};

std::optional<Request> parse(Arguments arguments, Environment& environment) {
    Request request;
    bool onlyWords = false;
    for (const std::string& argument : arguments) {
        const auto type = std::find(typeOptions.begin(), typeOptions.end(), argument);
        if (onlyWords || !argument.starts_with("--")) {
            request.words.push_back(text::toValidUtf8(argument));
        } else if (argument == "--") {
            onlyWords = true;
        } else if (argument == "--json") {
            request.asJson = true;
        } else if (type != typeOptions.end()) {
            request.type = static_cast<std::size_t>(type - typeOptions.begin());
        } else {
            usageError(defaultsCommand, "unknown option " + escapedName(argument), environment);
            return std::nullopt;
        }
    }
    return request;
}

template <class Number>
std::optional<Number> toNumber(const std::string& word) {
    Number number{};
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), number);
    if (error != std::errc() || end != word.data() + word.size()) return std::nullopt;
    return number;
}

// Absent when the words are no value of that type.
std::optional<Value> toValue(std::size_t type, std::span<const std::string> words) {
    if (type == arrayType) return std::vector<std::string>(words.begin(), words.end());
    if (words.size() != 1) return std::nullopt;
    const std::string& word = words[0];
    if (type == stringType) return word;
    if (typeOptions[type] == "--bool") {
        if (word == "true" || word == "yes" || word == "1") return true;
        if (word == "false" || word == "no" || word == "0") return false;
        return std::nullopt;
    }
    if (typeOptions[type] == "--int") {
        const auto number = toNumber<std::int64_t>(word);
        return number ? std::optional<Value>(*number) : std::nullopt;
    }
    const auto number = toNumber<double>(word);
    return number && std::isfinite(*number) ? std::optional<Value>(*number) : std::nullopt;
}

// In ASCII, so that no control character reaches the terminal.
std::string toJson(const std::optional<Value>& value) {
    using Json = nlohmann::json;
    const Json json = value ? std::visit([](const auto& held) { return Json(held); }, *value) : Json();
    return json.dump(-1, ' ', true, Json::error_handler_t::replace);
}

void printPlain(const Value& value, Environment& environment) {
    if (const auto* one = std::get_if<std::string>(&value)) {
        environment.out << printable(text::toValidUtf8(*one)) << '\n';
    } else if (const auto* several = std::get_if<std::vector<std::string>>(&value)) {
        for (const auto& element : *several)
            environment.out << printable(text::toValidUtf8(element)) << '\n';
    } else {
        environment.out << toJson(value) << '\n';
    }
}

void listAll(bool asJson, Environment& environment) {
    const char* separator = "";
    environment.out << (asJson ? "{" : "");
    for (const auto& key : environment.defaults.keys()) {
        const std::string value = toJson(environment.defaults.value(key));
        if (asJson) {
            environment.out << separator << toJson(key) << ':' << value;
            separator = ",";
        } else {
            environment.out << printable(text::toValidUtf8(key)) << " = " << value << '\n';
        }
    }
    environment.out << (asJson ? "}\n" : "");
}

int readOne(const std::string& key, bool asJson, Environment& environment) {
    const auto value = environment.defaults.value(key);
    if (!value) {
        environment.err << "dawnlyctl defaults: " << escapedName(key) << " is not set\n";
        return negative;
    }
    if (asJson) environment.out << toJson(value) << '\n';
    if (!asJson) printPlain(*value, environment);
    return success;
}

// Settings that the program reads when it builds the panel, which for certain is only when it starts.
constexpr std::array<std::string_view, 4> startKeys{housingKey::height, housingKey::screen, housingKey::width,
                                                    PinnedSpace::levelKey};

int keep(bool isKept, const std::string& key, Environment& environment) {
    if (!isKept) {
        environment.err << "dawnlyctl defaults: the settings cannot be written\n";
        return failure;
    }
    const bool isTold =
        environment.broadcast && environment.broadcast(std::string(appIdentifier) + ".settings") == Broadcast::sent;
    if (isTold && std::find(startKeys.begin(), startKeys.end(), key) != startKeys.end()) {
        environment.err << "dawnlyctl defaults: dawnly takes " << escapedName(key)
                        << " up when it is started the next time\n";
    }
    return success;
}

// Whether the setting takes only other values, which is then said.
bool refuses(const std::string& key, const Value& value, Environment& environment) {
    const auto choices = environment.choices.find(key);
    if (choices == environment.choices.end()) return false;
    const auto& names = choices->second;
    const auto* name = std::get_if<std::string>(&value);
    if (name != nullptr && std::find(names.begin(), names.end(), *name) != names.end()) return false;
    environment.err << "dawnlyctl defaults: " << key << " takes one of";
    for (const std::string& each : names)
        environment.err << ' ' << each;
    environment.err << '\n';
    return true;
}

int write(const Request& request, Environment& environment) {
    const std::string& key = request.words[1];
    const auto present = environment.defaults.value(key);
    // A setting of another type than the program expects counts as not set.
    if (present && !request.type && present->index() != stringType) {
        const std::string type(typeOptions[present->index()]);
        return usageError(defaultsCommand, escapedName(key) + " has another type; say " + type + " or --string",
                          environment);
    }
    const std::size_t type = request.type.value_or(stringType);
    auto value = toValue(type, std::span(request.words).subspan(2));
    if (!value) {
        return usageError(defaultsCommand, "that is no value for " + std::string(typeOptions[type]), environment);
    }
    // Every program reads the setting, each from where it was started.
    if (auto* folder = std::get_if<std::string>(&*value);
        folder != nullptr && key == FolderBriefingProvider::folderDefaultsKey) {
        *folder = absoluteFolder(*folder);
    }
    if (refuses(key, *value, environment)) return negative;
    return keep(environment.defaults.set(key, std::move(*value)), key, environment);
}

}  // namespace

int runDefaults(Arguments arguments, Environment& environment) {
    const auto request = parse(arguments, environment);
    if (!request) return failure;
    const auto& words = request->words;
    const std::string verb = words.empty() ? "" : words[0];
    if (verb == "write" && words.size() >= 2 && !request->asJson) return write(*request, environment);
    if (!request->type && verb == "read" && words.size() == 1) {
        listAll(request->asJson, environment);
        return success;
    }
    if (!request->type && verb == "read" && words.size() == 2) return readOne(words[1], request->asJson, environment);
    if (!request->type && verb == "delete" && words.size() == 2 && !request->asJson) {
        return keep(environment.defaults.remove(words[1]), words[1], environment);
    }
    return usageError(defaultsCommand, "read, write KEY VALUE or delete KEY is needed", environment);
}

}  // namespace sunpane::cli
