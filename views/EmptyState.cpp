#include "views/EmptyState.h"

#include "controller/AlphaTabController.h"
#include "design/Button.h"
#include "design/IconLabel.h"
#include "design/Surface.h"
#include "design/WrappedText.h"
#include "engine_host/bridge/BridgeCalls.h"
#include "views/RecentFilesList.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

EmptyState::EmptyState(AlphaTabController &controller, QWidget *parent)
    : QScrollArea(parent)
    , m_controller(controller)
{
    // The smallest window has no room for eight files; then the panel scrolls.
    setFrameShape(QFrame::NoFrame);
    setWidgetResizable(true);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setFocusPolicy(Qt::NoFocus);

    auto *panel = new Surface(&Theme::Colors::canvas);
    auto *layout = new QVBoxLayout(panel);
    layout->setContentsMargins(40, 40, 40, 40);
    layout->setSpacing(20);
    layout->addStretch();
    layout->addWidget(makeInvitation());
    auto *recents = new RecentFilesList(controller);
    layout->addWidget(recents, 0, Qt::AlignHCenter);
    layout->addStretch();
    setWidget(panel);

    controller.recentFiles.observe(
        recents, [recents](const QList<QUrl> &files) { recents->setVisible(!files.isEmpty()); });
}

QWidget *EmptyState::makeInvitation()
{
    auto *invitation = new QWidget;
    auto *layout = new QVBoxLayout(invitation);
    layout->setContentsMargins({});
    layout->setSpacing(16);
    layout->addWidget(new IconLabel(u"guitars"_s, 56, &Theme::Colors::secondary), 0, Qt::AlignHCenter);

    const auto addText = [layout](const QString &text, Theme::Type type, Theme::Role color) {
        auto *label = new WrappedText(text, type, color);
        layout->addWidget(label);
    };
    addText(tr("Open a Guitar Pro file, MusicXML, or PDF"), Theme::Type::Title, &Theme::Colors::text);
    addText(
        tr("Drag a .gp / .gp3–.gp5 / .gpx / .mxl / .pdf file here, or:"), Theme::Type::Body, &Theme::Colors::secondary);

    auto *buttons = new QHBoxLayout;
    buttons->setSpacing(10);
    buttons->addStretch();
    auto *open = new Button(Button::Look::Prominent);
    open->setText(tr("Open…"));
    connect(open, &Button::clicked, &m_controller, &AlphaTabController::presentOpenPanel);
    buttons->addWidget(open);
    auto *demo = new Button(Button::Look::Standard);
    demo->setText(tr("Try the demo"));
    connect(demo, &Button::clicked, this, [this] { m_controller.js(BridgeCalls::loadSample()); });
    buttons->addWidget(demo);
    buttons->addStretch();
    layout->addLayout(buttons);
    return invitation;
}
