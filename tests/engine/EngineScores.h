#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

/// Scores for the tests, made up on the spot or by the build.
namespace EngineScores {

struct Tune {
    QString title = QStringLiteral("Tune");
    QString composer = QStringLiteral("Nobody");
    /// One part for each name; all play the same quarter notes.
    QStringList parts = { QStringLiteral("Guitar") };
    /// Whether the parts are drums and not melodies.
    bool drums = false;
    /// Bars in four-four time.
    int bars = 8;
    /// Quarter notes a minute.
    int tempo = 120;
};

/// The tune as a MusicXML file. At 120 quarter notes a minute each bar lasts 2000 milliseconds.
QByteArray musicXml(const Tune &tune);

/// The demo score in one of the formats that the build writes it in: "gp", "gp3", "gp4", "gp5", "gpx", "mxl" or
/// "musicxml".
QByteArray ferry(const QString &kind);

/// A real score file of the collection beside the project; empty where the collection is not there.
QByteArray sample(const QString &name);
bool haveSamples();

} // namespace EngineScores
