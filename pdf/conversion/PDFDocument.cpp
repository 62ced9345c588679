#include "pdf/conversion/PDFDocument.h"

#include <QPdfDocument>

PDFDocument::PDFDocument(std::unique_ptr<QPdfDocument> document)
    : m_document(std::move(document))
{
}

PDFDocument::~PDFDocument() = default;

std::shared_ptr<PDFDocument> PDFDocument::open(const QString &path)
{
    auto document = std::make_unique<QPdfDocument>(nullptr);
    if (document->load(path) != QPdfDocument::Error::None || document->pageCount() < 1)
        return nullptr;
    return std::shared_ptr<PDFDocument>(new PDFDocument(std::move(document)));
}

int PDFDocument::pageCount() const { return m_document->pageCount(); }
