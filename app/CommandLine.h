#pragma once

#include <QList>
#include <QString>
#include <QUrl>

#include <optional>

class QCommandLineParser;

/// What the program was started with.
struct CommandLine {
    /// Absolute, in the order given.
    QList<QUrl> files;
    /// Why the arguments make no sense; empty when they do.
    QString error;

    /// The text that answers --help or --version, if either was asked for. Needs neither a display nor an application
    /// object, and makes none that outlives the call.
    static std::optional<QString> immediateAnswer(int argc, char *argv[]);

    /// @param arguments the program's name first, without the options that Qt took for itself
    static CommandLine parse(const QStringList &arguments);
};
