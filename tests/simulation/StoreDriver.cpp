#include "StoreDriver.h"

#include <limits>
#include <utility>

#include "base/Dates.h"
#include "core/stores/Json.h"

namespace sunpane::testing {
namespace {

using Json = nlohmann::json;

const Json& field(const Json& line, const char* name) {
    const auto found = line.find(name);
    if (found == line.end()) throw BadLine(std::string("\"") + name + "\" is missing");
    return *found;
}

std::string textField(const Json& line, const char* name) {
    const Json& value = field(line, name);
    if (!value.is_string()) throw BadLine(std::string("\"") + name + "\" is not a string");
    return value.get<std::string>();
}

std::optional<std::string> optionalText(const Json& line, const char* name) {
    if (field(line, name).is_null()) return std::nullopt;
    return textField(line, name);
}

double numberField(const Json& line, const char* name) {
    const Json& value = field(line, name);
    if (!value.is_number()) throw BadLine(std::string("\"") + name + "\" is not a number");
    return value.get<double>();
}

std::ptrdiff_t wholeField(const Json& line, const char* name) {
    const Json& value = field(line, name);
    if (!value.is_number_integer()) throw BadLine(std::string("\"") + name + "\" is not a whole number");
    return value.get<std::ptrdiff_t>();
}

bool truthField(const Json& line, const char* name) {
    const Json& value = field(line, name);
    if (!value.is_boolean()) throw BadLine(std::string("\"") + name + "\" is not true or false");
    return value.get<bool>();
}

std::vector<std::string> textsField(const Json& line, const char* name) {
    const Json& value = field(line, name);
    std::vector<std::string> texts;
    if (!value.is_array()) throw BadLine(std::string("\"") + name + "\" is not an array");
    for (const Json& text : value) {
        if (!text.is_string()) throw BadLine(std::string("\"") + name + "\" holds something else than strings");
        texts.push_back(text.get<std::string>());
    }
    return texts;
}

BriefingItem itemField(const Json& line) {
    return BriefingItem(textField(line, "markdown"));
}

template <class Texts>
void appendTexts(std::string& out, const Texts& texts) {
    out += '[';
    const char* separator = "";
    for (const std::string& text : texts) {
        out += separator;
        json::appendString(out, text);
        separator = ",";
    }
    out += ']';
}

}  // namespace

StoreDriver::StoreDriver(Instant start, Place place, const MakeDisk& makeDisk)
    : time_(start), place_(std::move(place)), disk_(makeDisk(clock_)) {
    clock_.zone = place_.zone;
    clock_.localeName = place_.locale;
    this->start();
    time_.runPending();
}

StoreDriver::~StoreDriver() {
    todos_.reset();
    flags_.reset();
    files_.reset();
}

void StoreDriver::start() {
    files_ = std::make_unique<StoreFiles>(
        StoreFiles::Ports{*disk_.files, cloud_, clock_, runLoop_, queues_, [](Seconds) {}}, place_.stateFolder);
    todos_ = std::make_unique<TodoStore>(*files_, place_.folder);
    flags_ = std::make_unique<ItemFlagStore>(*files_, place_.folder);
    todos_->onPrioChanged = [this](const Todo& todo) {
        if (todo.sourceItemKey) flags_->setPrio(*todo.sourceItemKey, todo.text, todo.isPrio());
    };
}

void StoreDriver::restart() {
    undo_ = NotchUndo();
    todos_.reset();
    flags_.reset();
    files_.reset();
    start();
    time_.runPending();
}

struct StoreDriver::Operations {
    using Table = std::map<std::string, std::function<void(StoreDriver& driver, const Json& line)>>;

    static Table onTodos() {
        return {
            {"todos.add", [](StoreDriver& driver, const Json& line) { driver.todos_->add(textField(line, "text")); }},
            {"todos.addLinked",
             [](StoreDriver& driver, const Json& line) {
                 driver.todos_->addLinked(textField(line, "text"), optionalText(line, "sourceKey"),
                                          truthField(line, "prio"));
             }},
            {"todos.toggle", [](StoreDriver& driver, const Json& line) { driver.todos_->toggle(driver.idAt(line)); }},
            {"todos.togglePrio",
             [](StoreDriver& driver, const Json& line) { driver.todos_->togglePrio(driver.idAt(line)); }},
            {"todos.rename",
             [](StoreDriver& driver, const Json& line) {
                 driver.todos_->rename(driver.idAt(line), textField(line, "text"));
             }},
            {"todos.setReminder",
             [](StoreDriver& driver, const Json& line) {
                 const auto date =
                     field(line, "date").is_null() ? std::nullopt : std::optional(Instant{numberField(line, "date")});
                 driver.todos_->setReminder(driver.idAt(line), date, optionalText(line, "rule"));
             }},
            {"todos.setEventID",
             [](StoreDriver& driver, const Json& line) {
                 driver.todos_->setEventID(optionalText(line, "eventID"), driver.idAt(line));
             }},
            {"todos.move", [](StoreDriver& driver,
                              const Json& line) { driver.todos_->move(driver.idAt(line), wholeField(line, "to")); }},
            {"todos.delete",
             [](StoreDriver& driver, const Json& line) {
                 const Uuid id = driver.idAt(line);
                 if (const auto index = driver.todos_->indexOf(id)) {
                     driver.undo_.push([&driver, todo = driver.todos_->todos()[*index], index] {
                         driver.todos_->restore(todo, *index);
                     });
                 }
                 driver.todos_->remove(id);
             }},
            {"undo", [](StoreDriver& driver, const Json&) { driver.undo_.undo(); }},
            {"todos.ingest",
             [](StoreDriver& driver, const Json& line) {
                 driver.todos_->ingest({textField(line, "id"), Instant{numberField(line, "date")},
                                        textField(line, "title"), textField(line, "markdown")});
             }},
            {"todos.importCalendar", [](StoreDriver& driver, const Json& line) {
                 driver.todos_->importCalendarTodos(textsField(line, "titles"));
             }}};
    }

    static Table onFlags() {
        return {
            {"flags.togglePrio",
             [](StoreDriver& driver, const Json& line) { driver.flags_->togglePrio(itemField(line)); }},
            {"flags.toggleCleared",
             [](StoreDriver& driver, const Json& line) { driver.flags_->toggleCleared(itemField(line)); }},
            {"flags.hide", [](StoreDriver& driver, const Json& line) { driver.flags_->hide(itemField(line)); }},
            {"flags.unhide", [](StoreDriver& driver, const Json& line) { driver.flags_->unhide(itemField(line)); }},
            {"flags.unclear", [](StoreDriver& driver, const Json& line) { driver.flags_->unclear(itemField(line)); }},
            {"flags.setPrio",
             [](StoreDriver& driver, const Json& line) {
                 driver.flags_->setPrio(textField(line, "key"), textField(line, "text"), truthField(line, "on"));
             }},
            {"flags.refresh",
             [](StoreDriver& driver, const Json& line) {
                 driver.flags_->refreshPrioReferences(textsField(line, "texts"));
             }},
            {"flags.untouched",
             [](StoreDriver& driver, const Json& line) { driver.flags_->updateUntouched(textsField(line, "texts")); }},
            {"flags.reminders",
             [](StoreDriver& driver, const Json& line) { driver.flags_->updateReminders(textsField(line, "lines")); }}};
    }

    static Table onMachine() {
        return {{"external",
                 [](StoreDriver& driver, const Json& line) {
                     const std::string file = textField(line, "file");
                     if (file.empty() || file.find('/') != std::string::npos)
                         throw BadLine("\"file\" is not the name of a file");
                     driver.disk_.writeExternally(pathInside(driver.place_.folder, file), textField(line, "content"));
                 }},
                {"restart", [](StoreDriver& driver, const Json&) { driver.restart(); }},
                {"wait", [](StoreDriver&, const Json&) {}},
                {"dump", [](StoreDriver& driver, const Json&) { driver.dump(); }},
                {"device.add", [](StoreDriver& driver, const Json& line) { driver.deviceAdd(line); }},
                {"device.clear", [](StoreDriver& driver, const Json& line) { driver.deviceClear(line); }},
                {"machine.zone",
                 [](StoreDriver& driver, const Json& line) { driver.clock_.zone = textField(line, "zone"); }},
                {"machine.fault", [](StoreDriver& driver, const Json& line) { driver.machineFault(line); }},
                {"machine.crash",
                 [](StoreDriver& driver, const Json& line) {
                     driver.memory().dieAfter(static_cast<std::uint64_t>(wholeField(line, "steps")));
                 }},
                {"machine.start", [](StoreDriver& driver, const Json&) { driver.machineStart(); }},
                {"machine.wake", [](StoreDriver&, const Json&) {}}};
    }

    static const Table& all() {
        static const Table table = [] {
            Table joined = onTodos();
            joined.merge(onFlags());
            joined.merge(onMachine());
            return joined;
        }();
        return table;
    }
};

std::optional<std::string> StoreDriver::run(const Json& line) {
    if (!line.is_object()) throw BadLine("a line is one JSON object");
    const Instant at{numberField(line, "at")};
    if (at < now()) throw BadLine("\"at\" lies before the line above");
    const auto operation = Operations::all().find(textField(line, "op"));
    if (operation == Operations::all().end()) throw BadLine("there is no such \"op\"");
    clock_.pinned.reset();
    // Asleep, the machine's wall clock goes on but its timers do not.
    if (operation->first == "machine.wake") time_.jumpWallClock(at);
    if (at > now()) time_.advanceTo(at);
    clock_.pinned = at;
    printed_.reset();
    operation->second(*this, line);
    time_.runPending();
    return std::exchange(printed_, std::nullopt);
}

Uuid StoreDriver::idAt(const Json& line) const {
    const auto index = wholeField(line, "index");
    const auto& todos = todos_->todos();
    if (index < 0 || index >= static_cast<std::ptrdiff_t>(todos.size())) return Uuid::random();
    return todos[static_cast<std::size_t>(index)].id;
}

SimulatedFileSystem& StoreDriver::memory() const {
    if (disk_.memory == nullptr) throw BadLine("machine operations need the folder in memory");
    return *disk_.memory;
}

std::optional<std::string> StoreDriver::content(const std::string& path) const {
    if (disk_.memory != nullptr) return disk_.memory->content(path);
    const FileReading reading = disk_.files->read(path, StoreFile::maximumBytes);
    return reading.status == FileReading::Status::read ? std::optional(reading.bytes) : std::nullopt;
}

// Another device reads the file, adds to it and writes it back. A file that does not decode it leaves alone.
void StoreDriver::deviceAdd(const Json& line) {
    const auto file = content(todos_->fileURL());
    auto state = file ? decodeTodos(*file) : std::nullopt;
    const std::string text = textField(line, "text");
    if (!state) return;
    state->todos.push_back(Todo::make(text, now()));
    partition(state->todos);
    disk_.writeExternally(todos_->fileURL(), encodeTodos(*state));
}

void StoreDriver::deviceClear(const Json& line) {
    const auto file = content(flags_->fileURL());
    auto state = file ? decodeFlags(*file) : std::nullopt;
    const BriefingItem item = itemField(line);
    if (!state) return;
    const std::string key(item.id());
    state->prio.erase(key);
    state->firstFlagged.erase(key);
    state->cleared[key] = item.markdown();
    state->dates[key] = now();
    disk_.writeExternally(flags_->fileURL(), encodeFlags(*state));
}

void StoreDriver::machineFault(const Json& line) {
    constexpr std::size_t fewBytes = 40;
    SimulatedFileSystem& disk = memory();
    const std::string kind = textField(line, "kind");
    disk.freeBytes = kind == "fullDisk" ? fewBytes : std::numeric_limits<std::size_t>::max();
    disk.readOnlyFolders.clear();
    disk.forbiddenFiles.clear();
    disk.specialFiles.clear();
    if (kind == "readOnlyFolder") disk.readOnlyFolders.insert(place_.folder);
    if (kind == "noJournals") disk.readOnlyFolders.insert(place_.stateFolder);
    for (const std::string& file : {todos_->fileURL(), flags_->fileURL(), flags_->feedbackURL()}) {
        if (kind == "noPermission") disk.forbiddenFiles.insert(file);
        if (kind == "directory") disk.specialFiles.insert(file);
    }
    if (kind == "folderGone") disk.removeFolder(place_.folder);
    if (kind == "none") disk.makeFolder(place_.folder);
}

void StoreDriver::machineStart() {
    // What the old process still does while it goes must not reach the disk.
    memory().dieAfter(0);
    todos_.reset();
    flags_.reset();
    files_.reset();
    memory().revive();
    undo_ = NotchUndo();
    start();
}

void StoreDriver::dump() {
    time_.runPending();
    std::string out = R"({"todos":[)";
    const char* separator = "";
    for (const Todo& todo : todos_->todos()) {
        out += separator + encodeTodo(todo);
        separator = ",";
    }
    out += R"(],"lastImportDay":)";
    json::appendString(out, todos_->lastImportDay());
    out += R"(,"dismissed":)";
    appendTexts(out, todos_->dismissed());
    const FlagState& flags = flags_->state();
    out += R"(,"prio":)";
    json::appendString(out, flags.prio);
    out += R"(,"cleared":)";
    json::appendString(out, flags.cleared);
    out += R"(,"hidden":)";
    appendTexts(out, flags.hidden);
    out += R"(,"dates":)";
    json::appendNumber(out, flags.dates);
    out += R"(,"firstFlagged":)";
    json::appendNumber(out, flags.firstFlagged);
    out += R"(,"feedback":)" + fileObject(flags_->feedbackURL());
    out += R"(,"todosFile":)" + fileObject(todos_->fileURL());
    out += R"(,"flagsFile":)" + fileObject(flags_->fileURL());
    printed_ = out + "}";
}

// The file on one line, or null when it is not there or not JSON.
std::string StoreDriver::fileObject(const std::string& path) const {
    const FileReading reading = disk_.files->read(path, StoreFile::maximumBytes);
    if (reading.status != FileReading::Status::read) return "null";
    // Our own compact form is passed on as it is, digit for digit.
    if (reading.bytes.find('\n') == std::string::npos && Json::accept(reading.bytes)) return reading.bytes;
    const auto parsed = nlohmann::ordered_json::parse(reading.bytes, nullptr, false);
    return parsed.is_discarded() ? "null" : parsed.dump();
}

}  // namespace sunpane::testing
