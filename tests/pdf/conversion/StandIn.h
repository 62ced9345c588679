#pragma once

#include <QByteArray>
#include <QFile>
#include <QStringList>

/// The program that stands in for Audiveris, told what to do; see its source for the words.
class StandIn final {
    Q_DISABLE_COPY_MOVE(StandIn)

public:
    explicit StandIn(const QString &folder, const char *words = "", const char *measures = "")
        : m_report(folder + QStringLiteral("/report"))
    {
        QFile::remove(m_report);
        qputenv("QV_STAND_IN", words);
        qputenv("QV_STAND_IN_MEASURES", measures);
        qputenv("QV_STAND_IN_REPORT", QFile::encodeName(m_report));
    }

    ~StandIn()
    {
        for (const char *name : { "QV_STAND_IN", "QV_STAND_IN_MEASURES", "QV_STAND_IN_REPORT" })
            qunsetenv(name);
    }

    static QString program() { return QStringLiteral(STAND_IN_AUDIVERIS); }

    /// What it wrote down: its inputs, a line each, and with "hang" two process numbers.
    QStringList report() const
    {
        QFile file(m_report);
        if (!file.open(QIODevice::ReadOnly))
            return {};
        return QString::fromUtf8(file.readAll()).split(u'\n', Qt::SkipEmptyParts);
    }

private:
    const QString m_report;
};
