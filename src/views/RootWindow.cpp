#include "views/RootWindow.h"

#include <QQmlComponent>
#include <QQuickItem>
#include <QSurfaceFormat>
#include <cstdlib>

#include "views/CoverImage.h"
#include "views/NotchOutline.h"
#include "views/ProgressArc.h"
#include "views/SymbolIcon.h"
#include "views/WorkArea.h"

// Made by the build from the module's QML files.
extern void qml_register_types_Sunpane();  // NOLINT(readability-identifier-naming)

namespace sunpane {

void RootWindow::registerTypes() {
    qml_register_types_Sunpane();
    qmlRegisterType<CoverImage>("Sunpane", 1, 0, "CoverImage");
    qmlRegisterType<NotchOutline>("Sunpane", 1, 0, "NotchOutline");
    qmlRegisterType<ProgressArc>("Sunpane", 1, 0, "ProgressArc");
    qmlRegisterType<SymbolIcon>("Sunpane", 1, 0, "SymbolIcon");
    qmlRegisterType<WorkArea>("Sunpane", 1, 0, "WorkArea");
}

RootWindow::RootWindow(QQmlEngine& engine, std::unique_ptr<PanelPresenter> presenter,
                       const PanelBackground::Collaborators& background)
    : presenter_(std::move(presenter)), background_(background, [this] {
          return PanelBackdrop::Window{winId(),
                                       {static_cast<double>(width()), static_cast<double>(height())},
                                       {presenter_->notchWidth(), presenter_->notchHeight()}};
      }) {
    QSurfaceFormat clear = format();
    clear.setAlphaBufferSize(8);
    setFormat(clear);
    setColor(Qt::transparent);
    setTitle(QStringLiteral("Dawnly"));

    QQmlComponent component(&engine, QUrl(QStringLiteral("qrc:/Sunpane/NotchRootView.qml")));
    // The views are part of the program: one that does not load is a build gone wrong.
    if (!component.isReady()) qFatal("%s", qPrintable(component.errorString()));
    const QVariantMap properties{{QStringLiteral("presenter"), QVariant::fromValue<QObject*>(presenter_.get())},
                                 {QStringLiteral("background"), QVariant::fromValue<QObject*>(&background_)}};
    rootView_.reset(qobject_cast<QQuickItem*>(component.createWithInitialProperties(properties)));
    if (!rootView_) qFatal("%s", qPrintable(component.errorString()));
    rootView_->setParentItem(contentItem());
    const auto fit = [this] { rootView_->setSize(contentItem()->size()); };
    connect(contentItem(), &QQuickItem::widthChanged, this, fit);
    connect(contentItem(), &QQuickItem::heightChanged, this, fit);
    connect(rootView_.get(), SIGNAL(contentGivenUp()), this, SIGNAL(contentGivenUp()));
    if (const auto* outline = rootView_->findChild<NotchOutline*>()) {
        connect(outline, &NotchOutline::outlineChanged, this, &RootWindow::outlineChanged);
    }
}

RootWindow::~RootWindow() = default;

void RootWindow::makeContent() {
    QMetaObject::invokeMethod(rootView_.get(), "makeContent");
}

}  // namespace sunpane
