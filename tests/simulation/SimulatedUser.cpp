#include "ProgramSimulation.h"
#include "app/TodoActions.h"

namespace sunpane::testing {

// The user's pointer, and what else opens and folds the panel.

std::string Simulation::point() {
    switch (below(8)) {
        case 0:
        case 1:
            return hover();
        case 2:
            return leave();
        case 3:
            return turnAway();
        case 4:
            return quickCapture();
        case 5:
            return menu();
        case 6:
            world_.broadcasts.broadcast("app.dawnly.Dawnly.expand");
            world_.platform.time.runPending();
            require(model().expanded() && !model().hasUnread(), "asked to, the panel unfolds");
            return chance(2) ? "asked to unfold" : "asked to unfold, " + turnAway();
        default:
            world_.pointer.moveTo({fraction() * 3000 - 500, fraction() * 2000 - 200});
            return "pointer somewhere";
    }
}

std::string Simulation::hover() {
    if (!hasPanel()) return "nothing to hover over";
    const Rect panel = world_.windows.last->rectangle;
    const bool mayOpen = !model().isExpandSuppressed();
    world_.pointer.moveTo({panel.midX() + fraction() * 40 - 20, panel.maxY() - fraction() * 9});
    world_.platform.time.runPending();
    if (mayOpen) require(model().expanded(), "the panel unfolds when the pointer reaches the notch");
    return mayOpen ? "hover" : "hover too early";
}

std::string Simulation::leave() {
    if (!hasPanel()) return "nothing to leave";
    const Rect panel = world_.windows.last->rectangle;
    // From a screen above the way down could lead across the notch.
    world_.pointer.moveTo({panel.minX() - 150, world_.pointer.location.y});
    world_.platform.time.runPending();
    const bool wasOpen = model().expanded();
    const bool mayFold = model().reminderUIOpen() == 0 && !model().isKeptOpen();
    world_.pointer.moveTo({panel.minX() - 30 - fraction() * 99, panel.minY() - fraction() * 99});
    world_.platform.time.runPending();
    require(model().expanded() == (wasOpen && !mayFold), "leaving folds the panel unless it must stay");
    return "leave";
}

std::string Simulation::turnAway() {
    const bool wasOpen = model().expanded();
    const bool mayFold = model().reminderUIOpen() == 0 && !model().isKeptOpen();
    chance(2) ? world_.workspace.activateAnother() : world_.pointer.pressElsewhere();
    world_.platform.time.runPending();
    require(model().expanded() == (wasOpen && !mayFold), "turning away folds the panel unless it must stay");
    return "turn to another program";
}

std::string Simulation::quickCapture() {
    const bool wasOpen = model().expanded();
    const bool isHeard = world_.hotkeys.registrations == 1 && hasPanel();
    world_.hotkeys.press();
    world_.platform.time.runPending();
    require(model().expanded() == (isHeard ? !wasOpen : wasOpen), "the hotkey opens and folds");
    if (!isHeard) return "hotkey without effect";
    require(world_.windows.last->key == !wasOpen, "the panel has the keyboard while it is open for a todo");
    if (wasOpen) return "hotkey folds";
    todos().add(text());
    return chance(2) ? "capture" : "capture, " + turnAway();
}

std::string Simulation::menu() {
    if (isMenuOpen_ || model().expanded()) {
        isMenuOpen_ = !isMenuOpen_;
        model().setReminderUIOpen(isMenuOpen_ ? 1 : 0);
    }
    return isMenuOpen_ ? "a menu is open" : "no menu is open";
}

// Cards.

std::string Simulation::onCards() {
    if (chance(4)) return takeBack();
    if (chance(6)) {
        chance(2) ? model().older() : model().newer();
        return "another day";
    }
    const Briefing* briefing = model().current();
    std::vector<BriefingItem> items;
    if (briefing != nullptr) {
        for (const auto& section : briefing->sections())
            items.insert(items.end(), section.items.begin(), section.items.end());
        std::erase_if(items, [this](const BriefingItem& item) { return flagsOf(item).hidden; });
    }
    if (items.empty()) return "no cards";
    if (chance(30)) {
        for (std::size_t i = 0; i < 3 * NotchUndo::maximumActions && !flagsOf(items.front()).hidden; ++i)
            swipe(items.front());
        return "swipe again and again";
    }
    return swipe(items[below(items.size())]);
}

Simulation::Flags Simulation::flagsOf(const BriefingItem& item) {
    const ItemFlagStore& store = model().flagStore();
    return {store.isPrio(item.id()), store.isCleared(item.id()), store.isHidden(item.id())};
}

std::string Simulation::swipe(const BriefingItem& item) {
    const double distance = (chance(2) ? 1 : -1) * (20.0 + static_cast<double>(below(120)));
    const bool acts = std::abs(distance) > ItemSwipeCoordinator::decisionDistance;
    const Flags before = flagsOf(item);
    const std::size_t actions = program_->undo.size();
    program_->swipes.pointerEntered(item);
    const auto scroll = [&](ScrollPhase phase, double x) {
        world_.pointer.scroll({phase, ScrollPhase::none, x, x / 9});
    };
    scroll(ScrollPhase::began, 0);
    for (int i = 0; i < 4; ++i)
        scroll(ScrollPhase::changed, distance / 4);
    scroll(ScrollPhase::ended, 0);
    program_->swipes.pointerLeft(item);
    const Flags after = flagsOf(item);
    const bool isFull = actions == NotchUndo::maximumActions;
    require(program_->undo.size() == actions + (acts && !isFull ? 1 : 0), "a swipe that counts can be taken back");
    if (!acts) require(after == before, "a short swipe changes nothing");
    if (acts && distance > 0) require(after.prio != before.prio, "to the right it flags");
    if (acts && distance < 0) require(after.cleared && after.hidden == (before.cleared), "to the left it clears");
    if (acts && chance(2)) {
        takeBack();
        require(flagsOf(item) == before, "a swipe that is taken back leaves no trace");
    }
    return "swipe " + std::string(item.id()) + " by " + std::to_string(distance);
}

std::string Simulation::takeBack() {
    const std::size_t actions = program_->undo.size();
    // A todo that comes back, or gets its old text back, is what the user wants.
    std::vector<Todo> before = todos().todos();
    const bool swallowed = world_.pointer.press({"z", false, true, false, false});
    require(swallowed == (actions > 0), "the undo key is taken when there is something to take back");
    require(program_->undo.size() == actions - (actions > 0 ? 1 : 0), "one action is taken back at a time");
    for (const Todo& todo : before)
        rules_.mayLose(todo.id);
    for (const Todo& todo : before)
        require(todos().indexOf(todo.id).has_value(), "taking back removes nothing");
    return "take back";
}

// Todos.

std::string Simulation::onTodos() {
    if (todos().todos().empty() || chance(4)) {
        const std::string what = text();
        const std::size_t before = todos().todos().size();
        todos().add(what);
        require(todos().todos().size() == before + 1, "what is typed is added");
        return "add " + what;
    }
    const Todo todo = todos().todos()[below(todos().todos().size())];
    switch (below(8)) {
        case 0:
        case 1:
            todo_actions::toggle(todos(), todo.id);
            return "tick " + todo.text;
        case 2:
            todos().togglePrio(todo.id);
            return "star " + todo.text;
        case 3:
            return edit(todo);
        case 4:
            rules_.mayLose(todo.id);
            todo_actions::removeWithUndo(todos(), todo.id, program_->undo);
            return "delete " + todo.text;
        case 5: {
            static const std::optional<std::string> rules[] = {std::nullopt, "daily", "weekly"};
            const Instant date = now() + static_cast<double>(below(259200)) - 3600;  // within three days
            todos().setReminder(todo.id, date, pick(rules));
            return "remind of " + todo.text;
        }
        case 6:
            return clickNotification();
        default:
            todos().move(todo.id, static_cast<std::ptrdiff_t>(below(9)) - 2);
            return "move " + todo.text;
    }
}

std::string Simulation::edit(const Todo& todo) {
    if (model().expanded() && hasPanel()) {
        program_->notifications.post(notification::makeNotchKey);
        require(world_.windows.last->key, "who edits has the keyboard");
        require(model().isKeptOpen(), "the panel stays open for who edits");
    }
    rules_.mayLose(todo.id);
    const std::string changed = text();
    todos().rename(todo.id, changed);
    program_->undo.push([this, id = todo.id, was = todo.text] { todos().rename(id, was); });
    return "rename " + todo.text + " to " + changed;
}

std::string Simulation::clickNotification() {
    if (world_.notificationService.shown.empty() || !world_.notificationService.click) return "no notification";
    const std::size_t opened = world_.workspace.opened.size();
    const auto shown = world_.notificationService.shown.back();
    world_.notificationService.click(shown.number);
    world_.platform.time.runPending();
    require(world_.workspace.opened.size() <= opened + 1, "a click opens one address at most");
    return "click on " + shown.body;
}

}  // namespace sunpane::testing
