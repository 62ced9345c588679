#include "views/ContentView.h"

#include "controller/AlphaTabController.h"
#include "controller/FileKinds.h"
#include "design/Icons.h"
#include "design/Separator.h"
#include "design/Surface.h"
#include "design/TabOrder.h"
#include "engine_host/AlphaTabWebView.h"
#include "pdf/viewing/PDFPageSidebar.h"
#include "pdf/viewing/PDFSheetView.h"
#include "pdf/viewing/PageRenderQueue.h"
#include "views/EmptyState.h"
#include "views/PageFailure.h"
#include "views/Toolbar.h"
#include "views/TrackSidebar.h"
#include "views/TransportBar.h"

#include <QDropEvent>
#include <QKeyEvent>
#include <QMessageBox>
#include <QMimeData>
#include <QPushButton>
#include <QScopedValueRollback>
#include <QSplitter>
#include <QVBoxLayout>

#include <algorithm>
#include <array>
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

/// What an alert says at once, and what it says when asked for details.
struct AlertText {
    QString sentence;
    QString details;
};

/// All of a short text. Of a longer one, the first paragraph and the last, which advises, where they are short; what
/// lies between them, or all where no paragraph is, are details.
AlertText alertText(const QString &error)
{
    constexpr qsizetype longest = 600;
    const QString gap = u"\n\n"_s;
    if (error.size() <= longest)
        return { error, {} };
    const qsizetype end = error.indexOf(gap);
    if (end < 0 || end > longest)
        return { error.left(longest) + u'…', error };
    const qsizetype last = error.lastIndexOf(gap);
    const bool advises = last > end && error.size() - last <= longest;
    const qsizetype between = advises ? last : error.size();
    return { error.left(end) + (advises ? error.sliced(last) : QString()),
        error.sliced(end + gap.size(), std::max<qsizetype>(between - end - gap.size(), 0)) };
}

bool isModifier(int key)
{
    constexpr std::array modifiers{ Qt::Key_Shift, Qt::Key_Control, Qt::Key_Meta, Qt::Key_Alt, Qt::Key_AltGr,
        Qt::Key_CapsLock, Qt::Key_NumLock, Qt::Key_ScrollLock, Qt::Key_Super_L, Qt::Key_Super_R, Qt::Key_Hyper_L,
        Qt::Key_Hyper_R };
    return std::ranges::find(modifiers, key) != modifiers.end();
}

std::optional<QUrl> firstOpenable(const QMimeData &data)
{
    const QList<QUrl> urls = data.urls();
    const auto found = std::find_if(urls.begin(), urls.end(), &FileKinds::isOpenable);
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
    auto *line = new Separator(Qt::Horizontal);
    layout->addWidget(line);

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
    m_columns = columns;
    m_aroundTheScore = { toolbar, line, sidebar };
    setSidebarWidth(idealSidebar);
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

int ContentView::sidebarWidth() const { return m_widthBefore.value_or(m_columns->sizes().constFirst()); }

void ContentView::setStage(bool on)
{
    if (on == m_widthBefore.has_value())
        return;
    const int width = sidebarWidth();
    m_widthBefore = on ? std::optional(width) : std::nullopt;
    for (QWidget *widget : std::as_const(m_aroundTheScore))
        widget->setVisible(!on);
    if (!on)
        setSidebarWidth(width);
    // What had the focus may be hidden now.
    else if (window()->focusWidget() && !window()->focusWidget()->isVisible())
        focusReader(Qt::OtherFocusReason);
}

void ContentView::setSidebarWidth(int width)
{
    const int bounded = std::clamp(width, minimumSidebar, maximumSidebar);
    // The score takes what is left: the sidebar does not stretch.
    m_columns->setSizes({ bounded, std::max(10 * bounded, m_columns->width() - bounded) });
}

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
    score->setFocusProxy(m_controller.webView());
    colorViewport();
    layers->add(score);
    auto *empty = new EmptyState(m_controller);
    layers->add(empty);
    auto *failure = new PageFailure(m_controller);
    layers->add(failure);
    layout->addWidget(layers, 1);

    auto *line = new Separator(Qt::Horizontal);
    layout->addWidget(line);
    auto *transport = new TransportBar(m_controller);
    layout->addWidget(transport);

    const auto refresh = [this, score, empty, failure, line, transport] {
        const bool pdf = bool(m_controller.pdfDocument.value());
        const bool well = m_controller.pageHealth == PageHealth::Well;
        // Not below the pages of a PDF either: what is shown there, a screen reader would read.
        empty->setVisible(!m_controller.hasScore && !pdf);
        line->setVisible(!pdf);
        transport->setVisible(!pdf);
        // The page runs on, but what is covered must not take keys.
        score->setEnabled(m_controller.hasScore && !pdf && well);
        empty->setEnabled(well);
        failure->setEnabled(!pdf);
        if (!pdf)
            leadKeysTo(m_controller.hasScore && well ? score : nullptr);
    };
    m_controller.hasScore.observe(detail, [refresh](bool) { refresh(); });
    m_controller.pageHealth.onChange(detail, [refresh](PageHealth) { refresh(); });
    m_controller.pdfDocument.observe(detail, [this, refresh, layers](const auto &document) {
        delete layers->template findChild<PDFSheetView *>();
        refresh();
        if (!document)
            return;
        auto *pages = new PDFSheetView(m_controller, document, pageSpacing, pageMargin, m_pages);
        layers->add(pages);
        pages->show();
        leadKeysTo(pages);
        // So that the keys scroll at once.
        pages->setFocus();
    });
    return detail;
}

/// Keys that no control has taken scroll what is read.
void ContentView::leadKeysTo(QWidget *reader)
{
    const QWidget *holder = window()->focusWidget();
    const bool nobodyElse = !holder || holder == this || !holder->isEnabled() || !holder->isVisible();
    m_reader = reader;
    if (nobodyElse && isVisible())
        focusReader(Qt::OtherFocusReason);
}

void ContentView::focusReader(Qt::FocusReason reason)
{
    QWidget *holder = m_reader ? m_reader.data() : this;
    holder->setFocus(reason);
}

void ContentView::focusInEvent(QFocusEvent *event)
{
    QWidget::focusInEvent(event);
    focusReader(event->reason());
}

/// A key that the control with the focus has left. A modifier alone scrolls nothing; and given back by Chromium behind
/// the key that it goes with, Alt would open the menus.
void ContentView::keyPressEvent(QKeyEvent *event)
{
    QWidget *reader = m_reader;
    while (reader && reader->focusProxy())
        reader = reader->focusProxy();
    // What the view of PDF pages does not want comes back here at once.
    if (m_passingKeyOn || !reader || reader->hasFocus() || isModifier(event->key())) {
        QWidget::keyPressEvent(event);
        return;
    }
    const QScopedValueRollback passingOn(m_passingKeyOn, true);
    QKeyEvent copy(event->type(), event->key(), event->modifiers(), event->nativeScanCode(), event->nativeVirtualKey(),
        event->nativeModifiers(), event->text(), event->isAutoRepeat(), ushort(event->count()));
    QCoreApplication::sendEvent(reader, &copy);
    event->setAccepted(copy.isAccepted());
}

void ContentView::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        colorViewport();
}

/// The page shows its window's palette behind the score page: it has no other way to learn what is light or dark here.
void ContentView::colorViewport()
{
    QPalette colors = palette();
    colors.setColor(QPalette::Window, Theme::colors(palette()).viewport);
    if (m_score)
        m_score->setPalette(colors);
}

void ContentView::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    // Holds the focus until Tab or a click gives it to a control: a fresh window shows no ring.
    if (!window()->focusWidget())
        focusReader(Qt::OtherFocusReason);
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
    const AlertText text = alertText(*error);
    m_alert->setText(text.sentence);
    m_alert->setDetailedText(text.details);
    m_alert->open();
}
