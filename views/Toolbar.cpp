#include "views/Toolbar.h"

#include "controller/AlphaTabController.h"
#include "design/Button.h"
#include "engine_host/bridge/BridgeCalls.h"
#include "pdf/viewing/PDFToolbarControls.h"

#include <QHBoxLayout>
#include <QSignalBlocker>

using namespace Qt::StringLiterals;

namespace {

Button *toolButton(const QString &icon, const QString &name)
{
    auto *button = new Button(Button::Look::Tool);
    button->setIconName(icon);
    button->setAccessibleName(name);
    return button;
}

} // namespace

Toolbar::Toolbar(AlphaTabController &controller, QWidget *parent)
    : Surface(&Theme::Colors::bar, parent)
    , m_controller(controller)
{
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(10, 8, 10, 8);
    layout->setSpacing(4);

    Button *open = toolButton(u"folder"_s, tr("Open"));
    open->setText(tr("Open"));
    connect(open, &Button::clicked, &controller, &AlphaTabController::presentOpenPanel);
    layout->addWidget(open);

    QWidget *scoreTools = makeScoreTools();
    layout->addWidget(scoreTools);
    auto *pdfTools = new PDFToolbarControls(controller);
    layout->addWidget(pdfTools);
    controller.pdfDocument.observe(this, [scoreTools, pdfTools](const auto &document) {
        scoreTools->setVisible(!document);
        pdfTools->setVisible(bool(document));
    });
}

QWidget *Toolbar::makeScoreTools()
{
    auto *tools = new QWidget;
    auto *layout = new QHBoxLayout(tools);
    layout->setContentsMargins({});
    layout->setSpacing(4);

    Button *demo = toolButton(u"music.note"_s, tr("Demo"));
    demo->setText(tr("Demo"));
    connect(demo, &Button::clicked, this, [this] { m_controller.js(BridgeCalls::loadSample()); });
    layout->addWidget(demo);
    layout->addStretch();

    Button *horizontal = toolButton(u"arrow.left.and.right"_s, tr("Horizontal"));
    horizontal->setText(tr("Horizontal"));
    horizontal->setCheckable(true);
    m_controller.horizontalLayout.observe(horizontal, [horizontal](bool on) {
        const QSignalBlocker blocker(horizontal);
        horizontal->setChecked(on);
    });
    connect(horizontal, &Button::toggled, this, [this](bool on) { m_controller.horizontalLayout = on; });
    layout->addWidget(horizontal);

    Button *zoomOut = toolButton(u"minus.magnifyingglass"_s, tr("Zoom out"));
    zoomOut->setToolTip(tr("Zoom out"));
    connect(zoomOut, &Button::clicked, this, [this] { m_controller.stepZoom(-1); });
    layout->addWidget(zoomOut);

    Button *zoomIn = toolButton(u"plus.magnifyingglass"_s, tr("Zoom in"));
    zoomIn->setToolTip(tr("Zoom in"));
    connect(zoomIn, &Button::clicked, this, [this] { m_controller.stepZoom(1); });
    layout->addWidget(zoomIn);
    return tools;
}
