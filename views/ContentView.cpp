#include "views/ContentView.h"

#include "controller/AlphaTabController.h"
#include "engine_host/AlphaTabWebView.h"
#include "pdf/viewing/PDFPageSidebar.h"
#include "pdf/viewing/PDFSheetView.h"
#include "pdf/viewing/PageRenderQueue.h"
#include "views/EmptyState.h"
#include "views/Toolbar.h"
#include "views/TrackSidebar.h"
#include "views/TransportBar.h"
#include "views/design/Icons.h"
#include "views/design/Separator.h"
#include "views/design/Surface.h"
#include "views/design/TabOrder.h"

#include <QDropEvent>
#include <QFileInfo>
#include <QMessageBox>
#include <QMimeData>
#include <QPushButton>
#include <QSplitter>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr int minimumSidebar = 180;
constexpr int idealSidebar = 220;
constexpr int maximumSidebar = 320;
constexpr int alertIcon = 32;
/// Between the pages of a PDF, and around them.
constexpr double pageSpacing = 14;
constexpr double pageMargin = 16;

/// Lays its children over one another, each as large as itself; the later ones lie on top.
class Layers final : public QWidget {
public:
    void add(QWidget *layer)
    {
        layer->setParent(this);
        layer->setGeometry(rect());
    }

protected:
    void resizeEvent(QResizeEvent *) override
    {
        for (QWidget *layer : findChildren<QWidget *>(Qt::FindDirectChildrenOnly))
            layer->setGeometry(rect());
    }
};

std::optional<QUrl> firstOpenable(const QMimeData &data)
{
    const QList<QUrl> urls = data.urls();
    const auto openable = [](const QUrl &url) {
        return AlphaTabController::openableExtensions().contains(QFileInfo(url.path()).suffix().toLower());
    };
    const auto found = std::find_if(urls.begin(), urls.end(), openable);
    return found == urls.end() ? std::nullopt : std::optional(*found);
}

} // namespace

ContentView::ContentView(AlphaTabController &controller, QWidget *parent)
    : QWidget(parent)
    , m_controller(controller)
    , m_pages(std::make_shared<PageRenderQueue>())
{
    Theme::install();
    setAcceptDrops(true);
    setFocusPolicy(Qt::ClickFocus);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    layout->setSpacing(0);
    auto *toolbar = new Toolbar(controller);
    layout->addWidget(toolbar);
    layout->addWidget(new Separator(Qt::Horizontal));

    auto *columns = new QSplitter(Qt::Horizontal);
    columns->setHandleWidth(1);
    columns->setChildrenCollapsible(false);
    QWidget *sidebar = makeSidebar();
    columns->addWidget(sidebar);
    QWidget *detail = makeDetail();
    columns->addWidget(detail);
    // A splitter puts each new widget below the others; screen readers read from the bottom up.
    sidebar->lower();
    columns->setStretchFactor(0, 0);
    columns->setStretchFactor(1, 1);
    columns->setSizes({ idealSidebar, 10 * idealSidebar });
    layout->addWidget(columns, 1);

    // After the views have put their rows in place.
    const auto order = [this, toolbar, sidebar, detail](const auto &) {
        const auto now = [toolbar, sidebar, detail] { TabOrder::followReadingOrder({ toolbar, sidebar, detail }); };
        QMetaObject::invokeMethod(this, now, Qt::QueuedConnection);
    };
    controller.tracks.observe(this, order);
    controller.recentFiles.observe(this, order);
    controller.pdfDocument.observe(this, order);
    controller.conversionError.observe(this, [this](const std::optional<QString> &error) { showError(error); });
}

ContentView::~ContentView() = default;

QWidget *ContentView::makeSidebar()
{
    auto *column = new Layers;
    column->setMinimumWidth(minimumSidebar);
    column->setMaximumWidth(maximumSidebar);
    auto *tracks = new TrackSidebar(m_controller);
    column->add(tracks);
    m_controller.pdfDocument.observe(column, [this, column, tracks](const auto &document) {
        tracks->setVisible(!document);
        delete column->template findChild<PDFPageSidebar *>();
        if (!document)
            return;
        auto *pages = new PDFPageSidebar(m_controller, document, m_pages);
        column->add(pages);
        pages->show();
    });
    return column;
}

QWidget *ContentView::makeDetail()
{
    auto *detail = new Surface(&Theme::Colors::canvas);
    auto *layout = new QVBoxLayout(detail);
    layout->setContentsMargins({});
    layout->setSpacing(0);

    auto *layers = new Layers;
    auto *score = m_score = new AlphaTabWebView(m_controller.webView());
    colorDesk();
    layers->add(score);
    auto *empty = new EmptyState(m_controller);
    layers->add(empty);
    layout->addWidget(layers, 1);

    auto *line = new Separator(Qt::Horizontal);
    layout->addWidget(line);
    auto *transport = new TransportBar(m_controller);
    layout->addWidget(transport);

    const auto refresh = [this, score, empty, line, transport] {
        const bool pdf = bool(m_controller.pdfDocument.value());
        empty->setVisible(!m_controller.hasScore);
        line->setVisible(!pdf);
        transport->setVisible(!pdf);
        // The page runs on, but what is covered must not take keys.
        score->setEnabled(m_controller.hasScore && !pdf);
        empty->setEnabled(!pdf);
    };
    m_controller.hasScore.observe(detail, [refresh](bool) { refresh(); });
    m_controller.pdfDocument.observe(detail, [this, refresh, layers](const auto &document) {
        delete layers->template findChild<PDFSheetView *>();
        refresh();
        if (!document)
            return;
        auto *sheet = new PDFSheetView(m_controller, document, pageSpacing, pageMargin, m_pages);
        layers->add(sheet);
        sheet->show();
        // So that the keys scroll at once.
        sheet->setFocus();
    });
    return detail;
}

void ContentView::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        colorDesk();
}

/// The page shows its window's palette behind the paper: it has no other way to learn what is light or dark here.
void ContentView::colorDesk()
{
    QPalette colors = palette();
    colors.setColor(QPalette::Window, Theme::colors(palette()).desk);
    if (m_score)
        m_score->setPalette(colors);
}

void ContentView::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    // Holds the focus until Tab or a click gives it to a control: a fresh window shows no ring.
    if (!window()->focusWidget())
        setFocus();
}

void ContentView::dragEnterEvent(QDragEnterEvent *event)
{
    if (firstOpenable(*event->mimeData()))
        event->acceptProposedAction();
}

void ContentView::dropEvent(QDropEvent *event)
{
    const std::optional<QUrl> url = firstOpenable(*event->mimeData());
    if (!url) {
        event->ignore();
        return;
    }
    event->acceptProposedAction();
    m_controller.load(*url);
}

QMessageBox *ContentView::makeAlert()
{
    auto *alert = new QMessageBox(QMessageBox::NoIcon, tr("Conversion"), QString(), QMessageBox::Ok, this);
    alert->setAttribute(Qt::WA_DeleteOnClose);
    alert->setTextFormat(Qt::PlainText);
    alert->button(QMessageBox::Ok)->setText(tr("OK"));
    alert->button(QMessageBox::Ok)->setIcon({});
    alert->setIconPixmap(Icons::pixmap(
        u"exclamationmark.triangle"_s, alertIcon, Theme::colors(palette()).secondary, devicePixelRatioF()));
    alert->layout()->setContentsMargins(24, 24, 24, 18);
    return alert;
}

void ContentView::showError(const std::optional<QString> &error)
{
    if (!error) {
        if (QMessageBox *alert = std::exchange(m_alert, nullptr))
            alert->close();
        return;
    }
    if (!m_alert) {
        m_alert = makeAlert();
        connect(m_alert, &QMessageBox::finished, this, [this] {
            // Closed by the user, not because the error is gone already.
            if (std::exchange(m_alert, nullptr))
                m_controller.conversionError = std::nullopt;
        });
    }
    m_alert->setText(*error);
    m_alert->open();
}
