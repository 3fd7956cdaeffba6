#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "app/NotchUndo.h"
#include "base/Instant.h"
#include "core/briefing/Briefing.h"
#include "core/stores/ItemFlagStore.h"
#include "core/stores/TodoStore.h"

/// What the user does with a briefing card beyond flagging it, and how flagging is taken back. Main thread only.
namespace sunpane::card_actions {

/// What is copied: the card's text without the marks of bold and code.
std::string copyText(const BriefingItem& item);

/// The media type of what tells the todo column of a dragged card.
constexpr const char* dragType = "application/x-dawnly-card";

/// What a card that is dragged away carries, as JSON: from it the todo column makes a todo that belongs to the card.
std::string dragPayload(const BriefingItem& item, const ItemFlagStore& flags);

/// Adds the card's suggestion to the todos, as a priority when the card is one.
void addToTodos(const BriefingItem& item, TodoStore& todos, const ItemFlagStore& flags);

/// The same, with a reminder on the todo. `repeatRule` as TodoStore::setReminder takes it.
void setReminder(const BriefingItem& item, Instant time, const std::optional<std::string>& repeatRule, TodoStore& todos,
                 const ItemFlagStore& flags);

/// Runs an operation on the flags and lets `undo` put back every card that it changes.
void flagWithUndo(const std::weak_ptr<ItemFlagStore>& flags, const std::function<void()>& operation, NotchUndo& undo);

}  // namespace sunpane::card_actions
