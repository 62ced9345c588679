#pragma once

#include <QByteArray>
#include <QPageLayout>
#include <QString>

#include <memory>

class QPrinter;

/// Where the score is printed, and how large the paper is.
struct PrintTarget {
    QPageLayout layout;
    /// Where the PDF goes; empty where it goes to the printer.
    QString filePath;
    /// Null where it goes to a file.
    std::shared_ptr<QPrinter> printer;
};

/// What has become of it.
struct PrintResult {
    bool succeeded = false;
    /// The document, where it was not for a printer.
    QByteArray pdf;
};
