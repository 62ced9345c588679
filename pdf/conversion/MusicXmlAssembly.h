#pragma once

#include "pdf/conversion/MusicXmlDocument.h"
#include "pdf/conversion/Result.h"

#include <vector>

namespace PDFConverter {

/// Appends the measures of each further document's first part to the first part of the first document, numbered on from
/// the count of measures there. Everything else of the first document stays; further documents without a part or a
/// measure are passed over.
///
/// Fails with "Unexpected MusicXML layout from Audiveris." when the first document has no part.
/// @param docs at least one, in the order of the pages
Result<MusicXmlDocument> merge(std::vector<MusicXmlDocument> docs);

/// Whether the score has a note with a pitch. Of tablature alone Audiveris makes bars without any.
bool hasPitchedNote(const MusicXmlDocument &document);

/// Removes every `direction` that holds an octave shift: Audiveris has read the pitches as they sound already.
void stripOctaveShifts(MusicXmlDocument &document);

} // namespace PDFConverter
