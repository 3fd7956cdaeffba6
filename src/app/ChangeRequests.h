#pragma once

#include <cstddef>
#include <list>
#include <memory>

#include "app/NotchUndo.h"
#include "app/NotchViewModel.h"
#include "base/Clock.h"
#include "base/RunLoop.h"
#include "base/Subscription.h"
#include "platform/FileSystem.h"
#include "platform/StoreRequests.h"

namespace sunpane {

/// Makes the changes to todos and flags that other programs ask for as if the user had made them in the panel, which
/// shows them at once and can take them back, and answers when the files have them.
///
/// One instance, owned by the start-up code; main thread only. What is not answered when it goes never is.
class ChangeRequests {
public:
    /// An answer waits that long (s) for the files.
    static constexpr Seconds patience = 2;
    /// So many requests wait for the files at once; what comes on top is answered right away.
    static constexpr std::size_t maximumWaiting = 256;
    /// Longer texts are no todos.
    static constexpr std::size_t maximumTextBytes = std::size_t{1} << 20;

    /// Everything outlives it.
    struct Collaborators {
        StoreRequests& requests;
        NotchViewModel& viewModel;
        NotchUndo& undo;
        const Clock& clock;
        RunLoop& runLoop;
        FileSystem& files;
    };

    explicit ChangeRequests(const Collaborators& collaborators);

private:
    struct Waiting {
        StoreRequests::Reply reply;
        StoreChangeAnswer answer;
        Subscription patience;
        Subscription todosWritten;
        Subscription flagsWritten;
    };

    StoreChangeAnswer make(const StoreChange& change);
    StoreChangeAnswer changeTodo(const StoreChange& change);
    StoreChangeAnswer changeFlag(const StoreChange& change);
    bool isOurs(const std::string& folder);
    void answerWhenWritten(const StoreChange& change, const StoreChangeAnswer& answer, StoreRequests::Reply reply);
    void finish(const std::weak_ptr<Waiting>& waiting, StoreChangeAnswer::Outcome outcome);

    Collaborators with_;
    // The files call back into this object only as long as the entry is in the list.
    std::list<std::shared_ptr<Waiting>> waiting_;
    Subscription requests_;
};

}  // namespace sunpane
