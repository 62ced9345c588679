#pragma once

#include <QString>

#include <memory>

class QPdfDocument;

/// One open PDF file.
class PDFDocument final {
    Q_DISABLE_COPY_MOVE(PDFDocument)

public:
    ~PDFDocument();

    /// Opens the file at `path`; null when it is missing, not a PDF, encrypted or has no page.
    static std::shared_ptr<PDFDocument> open(const QString &path);

    /// At least 1.
    int pageCount() const;

private:
    explicit PDFDocument(std::unique_ptr<QPdfDocument> document);

    const std::unique_ptr<QPdfDocument> m_document;
};
