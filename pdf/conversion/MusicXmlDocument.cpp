#include "pdf/conversion/MusicXmlDocument.h"

#include <QCoreApplication>
#include <QRegularExpression>
#include <QStringDecoder>
#include <QStringEncoder>

#include <optional>

using namespace Qt::StringLiterals;

namespace {

/// Scores are some ten elements deep. The parser's library walks down by recursion when it removes an element.
constexpr int deepest = 1000;

/// References stay unresolved and line ends as they are, so that everything can be written back unchanged.
constexpr unsigned int parsing = pugi::parse_cdata | pugi::parse_pi | pugi::parse_comments | pugi::parse_declaration
    | pugi::parse_doctype | pugi::parse_ws_pcdata | pugi::parse_fragment;
constexpr unsigned int writing = pugi::format_raw | pugi::format_no_escapes | pugi::format_no_declaration;

constexpr auto byteOrderMark = u'\xfeff';

QString translated(const char *text) { return QCoreApplication::translate("PDFConverter", text); }

/// What the declaration names counts for the one-byte encodings only; the others show themselves.
QStringConverter::Encoding encodingOf(const QByteArray &bytes)
{
    if (const auto seen = QStringConverter::encodingForData(bytes, u'<'); seen && *seen != QStringConverter::Utf8)
        return *seen;
    static const QRegularExpression latin1(
        uR"(^<\?xml[^>]*\sencoding\s*=\s*["'](iso-8859-1|latin1)["'])"_s, QRegularExpression::CaseInsensitiveOption);
    const bool isLatin1
        = latin1.match(QString::fromLatin1(bytes.first(std::min<qsizetype>(bytes.size(), 256)))).hasMatch();
    return isLatin1 ? QStringConverter::Latin1 : QStringConverter::Utf8;
}

bool isBlank(const char *text) { return QByteArrayView(text).trimmed().isEmpty(); }

/// Why the tree is no document, if it is none: a document has one element and no text around it.
std::optional<QString> flawOf(const pugi::xml_document &tree)
{
    int roots = 0;
    for (const pugi::xml_node &node : tree) {
        roots += node.type() == pugi::node_element;
        const bool isText = node.type() == pugi::node_pcdata || node.type() == pugi::node_cdata;
        if (isText && !isBlank(node.value()))
            return translated("Text outside of the document element");
    }
    if (roots == 0)
        return translated("No document element");
    return roots == 1 ? std::nullopt : std::optional(translated("More than one document element"));
}

/// Values are written between double quotes, whichever they stood in.
void escapeDoubleQuotes(pugi::xml_node &node)
{
    for (pugi::xml_attribute &attribute : node.attributes()) {
        QByteArray value(attribute.value());
        if (value.contains('"'))
            attribute.set_value(value.replace('"', "&quot;").constData());
    }
}

class Preparation final : public pugi::xml_tree_walker {
public:
    bool for_each(pugi::xml_node &node) override
    {
        escapeDoubleQuotes(node);
        return depth() < deepest;
    }
};

class ByteWriter final : public pugi::xml_writer {
public:
    void write(const void *data, std::size_t size) override
    {
        bytes.append(static_cast<const char *>(data), qsizetype(size));
    }

    QByteArray bytes;
};

QByteArray toLatin1(const QByteArray &utf8)
{
    QByteArray bytes;
    bytes.reserve(utf8.size());
    const QList<uint> characters = QString::fromUtf8(utf8).toUcs4();
    for (const uint character : characters) {
        if (character < 256)
            bytes += char(character);
        else
            bytes += "&#" + QByteArray::number(character) + ';';
    }
    return bytes;
}

} // namespace

namespace PDFConverter {

Result<MusicXmlDocument> MusicXmlDocument::parse(const QByteArray &bytes)
{
    const auto fail = [](const QString &flaw) {
        return Failure{ translated("The score that Audiveris wrote could not be read: %1.").arg(flaw) };
    };
    MusicXmlDocument document;
    document.m_encoding = encodingOf(bytes);
    QByteArray utf8 = bytes;
    if (document.m_encoding != QStringConverter::Utf8) {
        const QStringConverter::Flags keepMark = QStringConverter::Flag::ConvertInitialBom;
        utf8 = QString(QStringDecoder(document.m_encoding, keepMark)(bytes)).toUtf8();
    }
    static const QByteArray mark = QString(byteOrderMark).toUtf8();
    document.m_hasByteOrderMark = utf8.startsWith(mark);
    if (document.m_hasByteOrderMark)
        utf8.remove(0, mark.size());

    const pugi::xml_parse_result result
        = document.m_tree.load_buffer(utf8.constData(), std::size_t(utf8.size()), parsing, pugi::encoding_utf8);
    if (!result)
        return fail(QString::fromLatin1(result.description()));
    if (const std::optional<QString> flaw = flawOf(document.m_tree))
        return fail(*flaw);
    // Nothing has been removed yet: so far every step of the library was a loop.
    Preparation preparation;
    if (!document.m_tree.traverse(preparation))
        return fail(translated("Nested too deeply"));
    return document;
}

QByteArray MusicXmlDocument::serialise() const
{
    ByteWriter writer;
    m_tree.save(writer, "", writing, pugi::encoding_utf8);
    if (m_encoding == QStringConverter::Latin1)
        return toLatin1(writer.bytes);
    const QString text = m_hasByteOrderMark ? QString(byteOrderMark) : QString();
    if (m_encoding == QStringConverter::Utf8)
        return text.toUtf8() + writer.bytes;
    return QStringEncoder(m_encoding)(text + QString::fromUtf8(writer.bytes));
}

} // namespace PDFConverter
