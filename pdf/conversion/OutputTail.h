#pragma once

#include <QByteArray>
#include <QString>
#include <QStringDecoder>
#include <QStringList>

/// The last lines of an output, however long it is.
class OutputTail final {
public:
    /// How many lines are kept, empty ones not counted, and how much of each, in UTF-16 units.
    static constexpr qsizetype mostLines = 6;
    static constexpr qsizetype longestLine = 2000;

    /// What the output goes on with; pieces may end anywhere.
    void add(const QByteArray &bytes);

    /// The lines, separated by line feeds; nothing when the output so far is not valid UTF-8.
    QString text() const;

private:
    void addLine();

    QStringDecoder m_decoder{ QStringDecoder::Utf8 };
    QStringList m_lines;
    QString m_begun;
    bool m_valid = true;
};
