#include "views/PanelPresenter.h"

#include <utility>

#include "base/Dates.h"
#include "views/BriefSelection.h"
#include "views/PanelLayout.h"

namespace sunpane {

PanelPresenter::PanelPresenter(const Collaborators& collaborators, const Measures& measures)
    : with_(collaborators), measures_(measures), self_(std::make_shared<PanelPresenter*>(this)) {
    modelChanges_ = with_.viewModel.onWillChange([this] {
        // The change is announced before it takes effect; by the time the posted task runs it is in place.
        if (std::exchange(refreshPosted_, true)) return;
        with_.runLoop.post([weak = std::weak_ptr(self_)] {
            if (const auto self = weak.lock()) (*self)->refresh();
        });
    });
    refresh();
}

void PanelPresenter::refresh() {
    refreshPosted_ = false;
    showBriefing(with_.viewModel.current());
    emit changed();
}

void PanelPresenter::showBriefing(const Briefing* briefing) {
    if (briefing == nullptr) {
        shown_.reset();
        column_.show(nullptr, {});
        title_ = QString::fromUtf8(Briefing::defaultTitle.data(), static_cast<int>(Briefing::defaultTitle.size()));
        subtitle_.clear();
        icon_ = QStringLiteral("sun.max.fill");
        return;
    }
    if (shown_ != *briefing) {
        shown_ = *briefing;
        const auto sections = shown_->sections();
        const BriefingSection* recap = brief_selection::recapSection(sections);
        column_.show(recap, brief_selection::visibleSections(sections));
        title_ = QString::fromStdString(recap != nullptr ? brief_selection::recapTitle(*recap) : briefing->title);
        icon_ = recap != nullptr ? QStringLiteral("moon.stars.fill") : QStringLiteral("sun.max.fill");
    }
    subtitle_ = QString::fromStdString(briefing->dateLabel(LocalCalendar(with_.clock)));
}

qreal PanelPresenter::expandedHeight() const {
    panel_layout::Content content;
    content.notchHeight = measures_.notch.height;
    content.maxCardHeight = measures_.maxCardHeight;
    content.hasSections = column_.count() > 0;
    content.briefContentHeight = with_.viewModel.briefContentHeight();
    return panel_layout::expandedHeight(content);
}

void PanelPresenter::toggleSection(int id) {
    openSection_ = openSection_ == id ? std::nullopt : std::optional(id);
    emit openSectionChanged();
}

}  // namespace sunpane
