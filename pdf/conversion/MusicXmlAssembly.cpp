#include "pdf/conversion/MusicXmlAssembly.h"

#include <QCoreApplication>

#include <iterator>

namespace {

pugi::xml_node firstPart(PDFConverter::MusicXmlDocument &document)
{
    return document.tree().document_element().child("part");
}

/// @param number the number of the last measure that `target` has
void appendMeasures(const pugi::xml_node &part, pugi::xml_node &target, int &number)
{
    for (const pugi::xml_node &measure : part.children("measure")) {
        ++number;
        pugi::xml_node appended = target.append_copy(measure);
        if (pugi::xml_attribute attribute = appended.attribute("number"))
            attribute.set_value(number);
    }
}

} // namespace

namespace PDFConverter {

Result<MusicXmlDocument> merge(std::vector<MusicXmlDocument> docs)
{
    pugi::xml_node target = firstPart(docs.front());
    if (!target) {
        return Failure{ QCoreApplication::translate("PDFConverter", "Unexpected MusicXML layout from Audiveris.") };
    }
    const auto measures = target.children("measure");
    int number = int(std::distance(measures.begin(), measures.end()));
    for (std::size_t i = 1; i < docs.size(); ++i) {
        appendMeasures(firstPart(docs[i]), target, number);
        docs[i] = {}; // its measures have been copied
    }
    return std::move(docs.front());
}

bool hasPitchedNote(const MusicXmlDocument &document) { return bool(document.tree().select_node("//note/pitch")); }

void stripOctaveShifts(MusicXmlDocument &document)
{
    pugi::xpath_node_set found = document.tree().select_nodes("//direction[direction-type/octave-shift]");
    found.sort();
    // From the end, so that one inside of another goes first and none is touched that is gone.
    for (auto node = std::make_reverse_iterator(found.end()); node != std::make_reverse_iterator(found.begin()); ++node)
        node->node().parent().remove_child(node->node());
}

} // namespace PDFConverter
