#include "pdf/conversion/OutputTail.h"

#include <utility>

void OutputTail::add(const QByteArray &bytes)
{
    if (!m_valid)
        return;
    const QString text = m_decoder(bytes);
    m_valid = !m_decoder.hasError();
    QStringView rest(text);
    while (!rest.isEmpty()) {
        const qsizetype end = rest.indexOf(u'\n');
        const QStringView part = end < 0 ? rest : rest.first(end);
        m_begun += part.first(std::min(part.size(), longestLine - m_begun.size()));
        if (end < 0)
            return;
        addLine();
        rest = rest.sliced(end + 1);
    }
}

void OutputTail::addLine()
{
    if (m_begun.isEmpty())
        return;
    m_lines << std::exchange(m_begun, QString());
    if (m_lines.size() > mostLines)
        m_lines.removeFirst();
}

QString OutputTail::text() const
{
    if (!m_valid)
        return {};
    QStringList lines = m_lines;
    if (!m_begun.isEmpty())
        lines << m_begun;
    return lines.sliced(std::max<qsizetype>(0, lines.size() - mostLines)).join(u'\n');
}
