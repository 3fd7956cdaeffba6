#include "onboarding/Prompts.h"

namespace sunpane::prompts {
namespace {

/// A task around the folder's path: what follows it begins with a slash, so that the path reads as a folder.
struct TaskText {
    std::string_view head;
    std::string_view tail;
};

constexpr TaskText delivery{R"(=== DELIVER TO DAWNLY ===

Dawnly is a notch/menu-bar briefing app on this Mac (and its iPhone companion). It mirrors this folder — write your briefing there and it appears instantly on every device:

)",
                            R"(/

RULES:
1. One markdown file per day, named YYYY-MM-DD.md (today's real date).    Overwrite your own earlier version; never touch other days.
2. First line: `# <Title>` — shown as the card title    (e.g. `# Morning Briefing — Monday, 6 July`).
3. Start every section with `### <emoji> <Name>` — each becomes a    collapsible card (e.g. `### 🔴 Urgent`, `### 📅 Today's Schedule`).    Put a section whose name contains "Schedule" first: it is pinned    open with the day's summary.
4. Use `- ` bullets, ONE item per bullet — each bullet becomes a    swipeable card the user can flag PRIO or CLEAR. **Bold** inside    bullets is fine.
5. Tasks: add a `### ✅ Action Items` section with `- [ ] task` lines —    these import into the user's todo list (deduped by text; keep    wording stable between runs). Omit empty categories entirely;    never write filler bullets like "nothing new" or "all clear" —    absence IS the all-clear.
6. FEEDBACK LOOP: before writing, read `feedback.json` in the same    folder if present. Items under "cleared" were dismissed by the    user — the dismissal kills the topic, not the phrasing, so never    reintroduce it reworded; resurface only when something genuinely    new happened and say in one clause what changed. A cleared topic    always beats a similar "prio" entry. Items under    "prio" carry a "since" date and retire once the work stops    touching them (about two days of silence, two weeks maximum) —    everything still listed is LIVE today, never a backlog. Items under "reminders" are todos with a    scheduled nudge — treat them as timed commitments when planning    the day.
7. Later runs the same day (e.g. an evening recap): APPEND a new    `### 🌙 <Name>` section to today's file — never rewrite the    morning content. Plain bullets only there (no `[ ]`).

If the folder does not exist, create it. If writing fails, report it and continue with your other outputs.

=== END DAWNLY ===)"};

constexpr TaskText morning{
    R"(You write the user's MORNING BRIEF. Run on your own every weekday morning, before the user starts work: gather, write one file, stop. Nobody is there to answer, so never ask; where something is unclear, decide by the rules below.

Dawnly, a briefing app that unfolds from the top of the user's screen, is the only delivery surface. It mirrors one folder and shows what you write there at once. Send no email, no chat message and no second copy.

=== THE DAWNLY FOLDER ===

)",
    R"(/

Create the folder if it does not exist. Today's file in it is YYYY-MM-DD.md, with today's real date in the user's time zone (for example 2026-07-06.md). It is the only file you may write, with its .tmp of step 2, which you rename or remove: never touch other days, feedback.json, todos.json or itemflags.json, and delete nothing.

=== STEP 0: READ FEEDBACK FIRST ===

Read feedback.json in that folder before anything else. If it is missing or cannot be read, go on without it. It is a JSON object with the four lists below; pass over its other keys, and take a list that is missing as empty. An entry is either a plain string or an object {"text": ..., "since": "YYYY-MM-DD"}; accept both everywhere.

- "cleared": the user dismissed these. The topic is dead, not just the wording: never bring it back reworded. Bring it back only when something genuinely new happened, and say in one clause what changed. A cleared topic always beats a similar "prio" entry.
- "prio": the user flagged these as priorities; "since" is the day of the flag. Everything listed is live today: look up its current state, give it a bullet and put it early in its section. An entry leaves the list by itself after about two days of silence, two weeks at most. Do not treat the list as a backlog.
- "untouched": shown last time, neither flagged nor cleared. Repeat one only if it still matters today, and keep it shorter.
- "reminders": todos for which the user set a time. Plan the day around them, but do not list them again as tasks.

=== STEP 1: GATHER ===

Look through what you have access to, in this order:
1. Calendar: all of today's meetings with their times, places and join links; conflicts, and anything to prepare. Tomorrow's first meeting only if it needs work today.
2. Email: since the last working day, what waits for the user's answer or has a deadline. Skip newsletters and receipts.
3. Chat: mentions, direct messages and threads in which the user is awaited.
4. Other tools: trackers, documents, code reviews, whatever else is connected, as far as something changed or is due.

Never invent data: no meeting, name, number, link or deadline that you did not read in a source. If a source is missing or fails, say so in one bullet under "On Your Radar" (for example "Email was out of reach this morning") and go on with the others.

=== STEP 2: WRITE THE FILE ===

Plain UTF-8 markdown, in the user's language; only the title's first two words and the section names stay as they stand here, because the app knows some of them. If today's file already exists from an earlier run of yours, overwrite it, but keep a "### 🌙" section at its end if it has one. Write the file whole, never line by line: the app may read it at any moment. Best write 2026-07-06.md.tmp (with today's date) in the same folder and rename that.

1. First line: `# Morning Briefing, [Weekday D Month]`, for example `# Morning Briefing, Monday 6 July`.
2. Every section starts with `### <emoji> <Name>` on a line of its own and becomes a collapsible card. Use no other headings.
3. Bullets start with `- `, ONE item per bullet, on one line. Every bullet becomes a card that the user flags or clears, so it has to make sense by itself: who, what, by when. Lead with a few words in **bold**, never with the whole bullet in bold, which would read as a heading. A link is [words](https://...), and never the first thing in a bullet. At most about 200 characters; no nested bullets, tables or numbered lists. Keep the wording of a bullet from yesterday's file whose facts have not changed, so that the user's flag stays on it.
4. Suggested sections, in this order; leave out those that would be empty:
   ### 📅 Today's Schedule: always first; it is pinned open with the day's summary. One meeting per bullet, earliest first, starting with the time as HH:MM.
   ### 🔴 Urgent: what breaks, expires or blocks somebody today.
   ### 💬 Mentions: who waits for the user, and for what.
   ### 👀 On Your Radar: what is coming up, worth knowing, or missing.
5. Last: `### ✅ Action Items` with one `- [ ] task` line per task. They import into the user's todo list, where each stays until the user ticks it off, and are deduplicated by their text: if you list a task again that an earlier file had, word it exactly as there. Each starts with a verb. List only what the user has to do, at most seven.
6. No filler: no greetings, no "nothing new", no "all clear". Absence is the all-clear.
7. The whole brief reads in about 30 seconds. When in doubt, leave it out.

A complete file:

--- begin example ---
# Morning Briefing, Monday 6 July

### 📅 Today's Schedule
- 09:30 **Stand-up** with the platform team
- 14:00 **Design review** in room 4: bring the new mock-ups

### 🔴 Urgent
- **Contract renewal** ends today at 17:00, Legal waits for your signature

### 💬 Mentions
- **Mira** asks in #platform which rollout plan is the current one

### 👀 On Your Radar
- **Budget round** starts on Thursday, your figures are due on Wednesday

### ✅ Action Items
- [ ] Sign the contract renewal
- [ ] Send Mira the rollout plan
--- end example ---

The two lines with dashes are not part of the file.

=== END OF RUN ===

Finish with one short message: the path of the file that you wrote, and which connectors failed, if any. If writing failed, say so and why.)"};

constexpr TaskText evening{
    R"(You write the user's END-OF-DAY recap. Run on your own every weekday evening: gather what changed, append one section to today's file, stop. Nobody is there to answer, so never ask; where something is unclear, decide by the rules below.

Dawnly, a briefing app that unfolds from the top of the user's screen, is the only delivery surface. The recap goes to the end of the same daily file that the morning brief was written into, and shows there at once.

=== STEP 0: READ CONTEXT FIRST ===

1. The Dawnly folder:

)",
    R"(/

   Create it if it does not exist.
2. Today's file in it, YYYY-MM-DD.md with today's real date in the user's time zone (for example 2026-07-06.md). Read it whole: it tells what the user already knows. Everything in it is preserved byte for byte, except an earlier `### 🌙 EOD Recap` section, which the new one replaces in place. If the file is missing, create it with the title line `# Morning Briefing, [Weekday D Month]` (for example `# Morning Briefing, Monday 6 July`) and an empty line. Never touch other days, todos.json or itemflags.json, and delete nothing but a .tmp of your own.
3. feedback.json in the same folder; if it is missing or cannot be read, go on without it. Never write it. It is a JSON object with the four lists below; pass over its other keys, and take a list that is missing as empty. An entry is either a plain string or an object {"text": ..., "since": "YYYY-MM-DD"}; accept both everywhere.
   - "cleared": the user dismissed these. The topic is dead, not just the wording: never bring it back reworded. Bring it back only when something genuinely new happened, and say in one clause what changed. A cleared topic always beats a similar "prio" entry.
   - "prio": flagged as priorities; "since" is the day of the flag. Everything listed is live today: look up where it stands and report it. An entry leaves the list by itself after about two days of silence, two weeks at most; it is no backlog.
   - "untouched": shown, neither flagged nor cleared. Leave these out unless something changed.
   - "reminders": todos for which the user set a time. Treat them as commitments; mention one only if its time is tomorrow.

=== STEP 1: GATHER WHAT CHANGED SINCE THIS MORNING ===

Look through what you have access to, about the last 8 hours:
1. Email and chat: what came in, was answered or decided, and who still waits for the user.
2. Trackers, documents and other tools: what moved, what is newly due.
3. Calendar: tomorrow's first three meetings with their times, and what they need.
4. The `- [ ]` lines of today's file: a task is done when todos.json in the folder has its "text" with "done": true, or does not have it any more. If todos.json cannot be read, go by what you see. All others are still open; report each with identical wording, word for word, so that it is recognised as the same task.

Never invent data. If a source is missing or fails, say so in one bullet and go on with the others.

=== STEP 2: APPEND THE RECAP ===

Put exactly one section at the end of today's file, after an empty line:

1. Its heading is `### 🌙 EOD Recap`, on a line of its own. Use no other headings in it.
2. Plain `- ` bullets only, ONE item per bullet, on one line, understandable by itself, with a few words in **bold** where that helps, but never the whole bullet. Never `- [ ]`: it would import an open task a second time.
3. In this order: what came in since this morning, what is still open ("Still open: " and the task's own words), what tomorrow starts with ("Tomorrow " and the time).
4. At most eight bullets, readable in about 20 seconds. No filler such as "nothing new"; leave out what did not change. If nothing at all is left to say, write no section and say so at the end of the run.
5. If the file already had an `### 🌙 EOD Recap` section, replace it in place, from its heading up to the next `### ` heading or the end of the file. There is never a second one.
6. Write the file whole, as UTF-8, never line by line: the app may read it at any moment. Best write 2026-07-06.md.tmp (with today's date) in the same folder and rename that.

A section:

--- begin example ---
### 🌙 EOD Recap
- **Legal** countersigned the contract renewal at 15:40
- **Budget figures**: Noor moved the deadline to Thursday noon
- Still open: Send Mira the rollout plan
- Tomorrow 09:00 **Stand-up**, 10:30 **Hiring panel**, 13:00 **Lunch with Tom**
--- end example ---

The two lines with dashes are not part of the file.

=== END OF RUN ===

Finish with one short message: the path of the file that you wrote, and which connectors failed, if any. If writing failed, say so and why.)"};

std::string around(std::string_view folder, const TaskText& text) {
    while (folder.ends_with('/'))
        folder.remove_suffix(1);
    return std::string(text.head).append(folder).append(text.tail);
}

}  // namespace

std::string deliveryBlock(std::string_view folder) {
    return around(folder, delivery);
}

std::string morningTask(std::string_view folder) {
    return around(folder, morning);
}

std::string eveningTask(std::string_view folder) {
    return around(folder, evening);
}

}  // namespace sunpane::prompts
