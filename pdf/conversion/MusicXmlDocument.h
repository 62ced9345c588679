#pragma once

#include "pdf/conversion/Result.h"

#include <QByteArray>
#include <QStringConverter>

#include <pugixml.hpp>

namespace PDFConverter {

/// One score in MusicXML. What nobody changes is written as it was read: declaration, document type, comments, white
/// space, character references, the encoding.
class MusicXmlDocument final {
public:
    MusicXmlDocument() = default;

    /// Loads nothing from outside `bytes` and expands no entities. Fails with a sentence for the user when they are not
    /// well-formed, or are nested deeper than a thousand elements.
    static Result<MusicXmlDocument> parse(const QByteArray &bytes);

    /// Adds no white space. A character that the document's encoding lacks becomes a character reference.
    QByteArray serialise() const;

    /// Texts and attribute values stand in it as they are written in the file, references and all.
    pugi::xml_document &tree() { return m_tree; }
    const pugi::xml_document &tree() const { return m_tree; }

private:
    pugi::xml_document m_tree;
    QStringConverter::Encoding m_encoding = QStringConverter::Utf8;
    bool m_hasByteOrderMark = false;
};

} // namespace PDFConverter
