// Makes the PDFs that engraving alone does not give out of those that it does.
//
// usage: assemble KIND INPUT OUTPUT
//   rotated   every page lies on its side in the file and carries a rotation that displays it upright
//   cropped   every page has a crop box that leaves a third of it
//   mixed     the pages, then the same on US letter, then on A5
//   first     the first page alone
//   locked    encrypted, with an empty user password
//   secret    encrypted, with a user password that is not empty
//   broken    with a cross-reference table that points nowhere
//   NUMBER    the pages again and again, up to that many

#include <qpdf/Buffer.hh>
#include <qpdf/QPDF.hh>
#include <qpdf/QPDFPageDocumentHelper.hh>
#include <qpdf/QPDFPageObjectHelper.hh>
#include <qpdf/QPDFWriter.hh>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

namespace {

using Rectangle = QPDFObjectHandle::Rectangle;

void setBox(QPDFPageObjectHelper &page, const char *name, const Rectangle &box)
{
    page.getObjectHandle().replaceKey(name, QPDFObjectHandle::newArray(box));
}

Rectangle mediaBox(QPDFPageObjectHelper &page) { return page.getAttribute("/MediaBox", false).getArrayAsRectangle(); }

void prepend(QPDF &document, QPDFPageObjectHelper &page, const std::string &operators)
{
    page.addPageContents(document.newStream(operators), true);
}

/// Turns the drawing a quarter to the left and has the viewer turn it back.
void layOnItsSide(QPDF &document, QPDFPageObjectHelper &page)
{
    const Rectangle box = mediaBox(page);
    prepend(document, page, "0 1 -1 0 " + std::to_string(box.ury) + " 0 cm\n");
    setBox(page, "/MediaBox", Rectangle(0, 0, box.ury, box.urx));
    page.getObjectHandle().replaceKey("/Rotate", QPDFObjectHandle::newInteger(90));
}

void crop(QPDFPageObjectHelper &page)
{
    const Rectangle box = mediaBox(page);
    setBox(page, "/CropBox", Rectangle(box.urx / 4, box.ury / 3, box.urx * 3 / 4, box.ury * 2 / 3));
}

/// Fits the drawing onto a page of another size, from its lower left corner, which is not its origin.
void fitOnto(QPDF &document, QPDFPageObjectHelper &page, double width, double height)
{
    const Rectangle box = mediaBox(page);
    const std::string scale = std::to_string(std::min(width / box.urx, height / box.ury));
    prepend(document, page, scale + " 0 0 " + scale + " -20 -30 cm\n");
    setBox(page, "/MediaBox", Rectangle(-20, -30, width - 20, height - 30));
}

void mixSizes(QPDF &document)
{
    QPDFPageDocumentHelper pages(document);
    std::vector<QPDFPageObjectHelper> more;
    for (const auto &[width, height] : { std::pair(612.0, 792.0), std::pair(419.53, 595.28) }) {
        for (QPDFPageObjectHelper &page : pages.getAllPages()) {
            more.push_back(page.shallowCopyPage());
            fitOnto(document, more.back(), width, height);
        }
    }
    for (QPDFPageObjectHelper &page : more)
        pages.addPage(page, false);
}

void repeatUpTo(QPDF &document, std::size_t count)
{
    QPDFPageDocumentHelper pages(document);
    const std::vector<QPDFPageObjectHelper> originals = pages.getAllPages();
    for (std::size_t i = originals.size(); i < count; ++i)
        pages.addPage(QPDFPageObjectHelper(originals[i % originals.size()]).shallowCopyPage(), false);
}

void keepFirst(QPDF &document)
{
    QPDFPageDocumentHelper pages(document);
    const std::vector<QPDFPageObjectHelper> all = pages.getAllPages();
    for (std::size_t i = 1; i < all.size(); ++i)
        pages.removePage(all[i]);
}

/// Has "startxref" name a place where no table is.
void breakTable(std::string &file)
{
    const std::size_t place = file.rfind("startxref");
    file.replace(place, file.size() - place, "startxref\n7\n%%EOF\n");
}

bool change(QPDF &document, const std::string &kind)
{
    QPDFPageDocumentHelper pages(document);
    if (kind == "rotated") {
        for (QPDFPageObjectHelper &page : pages.getAllPages())
            layOnItsSide(document, page);
    } else if (kind == "cropped") {
        for (QPDFPageObjectHelper &page : pages.getAllPages())
            crop(page);
    } else if (kind == "mixed") {
        mixSizes(document);
    } else if (kind == "first") {
        keepFirst(document);
    } else if (kind.find_first_not_of("0123456789") == std::string::npos) {
        repeatUpTo(document, std::stoul(kind));
    } else {
        return kind == "locked" || kind == "secret" || kind == "broken";
    }
    return true;
}

std::string written(QPDF &document, const std::string &kind)
{
    QPDFWriter writer(document);
    writer.setOutputMemory();
    // A table in clear text, so that it can be broken; the same bytes at every build.
    writer.setObjectStreamMode(qpdf_o_disable);
    writer.setDeterministicID(kind != "locked" && kind != "secret");
    if (kind == "locked" || kind == "secret") {
        writer.setR6EncryptionParameters(
            kind == "secret" ? "open" : "", "owner", true, true, true, true, true, true, qpdf_r3p_full, true);
    }
    writer.write();
    const auto bytes = writer.getBufferSharedPointer();
    return { reinterpret_cast<const char *>(bytes->getBuffer()), bytes->getSize() };
}

} // namespace

int main(int argc, char *argv[])
try {
    if (argc != 4)
        return 2;
    const std::string kind = argv[1];
    QPDF document;
    document.processFile(argv[2]);
    if (!change(document, kind))
        return 2;
    std::string file = written(document, kind);
    if (kind == "broken")
        breakTable(file);
    std::ofstream output(argv[3], std::ios::binary);
    output << file;
    output.close();
    return output ? 0 : 1;
} catch (const std::exception &error) {
    std::fprintf(stderr, "assemble: %s\n", error.what());
    return 1;
}
