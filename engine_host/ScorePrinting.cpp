#include "engine_host/ScorePrinting.h"

#include "engine_host/EnginePage.h"
#include "engine_host/EngineView.h"
#include "engine_host/bridge/PageReports.h"

#include <QPrinter>

#include <cmath>
#include <utility>

namespace {

/// Chromium rounds the paper and each margin to points. What is a little higher than what remains begins a further
/// page.
constexpr double rounding = 3 * 96.0 / 72.0;

/// What can be printed on, in CSS pixels: 96 to the inch.
QSizeF roomOn(const QPageLayout &layout)
{
    const QSizeF inches = layout.paintRect(QPageLayout::Inch).size();
    return { std::floor(inches.width() * 96 - rounding), std::floor(inches.height() * 96 - rounding) };
}

} // namespace

ScorePrinting::ScorePrinting(EngineView &view, EnginePage &page, PageReports &reports)
    : m_view(view)
    , m_page(page)
    , m_reports(reports)
{
    connect(&m_reports, &PageReports::printPrepared, this, &ScorePrinting::prepared);
    connect(&m_view, &QWebEngineView::printFinished, this, [this](bool succeeded) {
        if (m_job && m_job->target.printer)
            end({ succeeded, {} });
    });
    connect(&m_page, &QWebEnginePage::renderProcessTerminated, this, [this] { end({}); });
}

ScorePrinting::~ScorePrinting() = default;

void ScorePrinting::print(const PrintTarget &target, Printed printed)
{
    if (m_job) {
        printed({});
        return;
    }
    m_job = Job{ target, std::move(printed) };
    const QSizeF room = roomOn(target.layout);
    m_reports.wantPrint(room.width(), room.height());
}

void ScorePrinting::prepared(bool succeeded)
{
    if (!m_job || m_job->prepared)
        return;
    if (!succeeded) {
        end({});
        return;
    }
    m_job->prepared = true;
    if (QPrinter *printer = m_job->target.printer.get()) {
        // Chromium would put margins of its own into the pages, but not where the printer has the whole paper. They are
        // painted later, and then where the paper's margins end.
        printer->setFullPage(true);
        m_view.print(printer);
        printer->setFullPage(false);
        return;
    }
    m_page.printToPdf([this](const QByteArray &pdf) { end({ !pdf.isEmpty(), pdf }); }, m_job->target.layout);
}

void ScorePrinting::end(const PrintResult &result)
{
    if (!m_job)
        return;
    m_reports.endPrint();
    const Printed printed = std::exchange(m_job, std::nullopt)->printed;
    printed(result);
}
