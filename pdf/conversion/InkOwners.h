#pragma once

#include <vector>

namespace PDFConverter {

class InkRuns;

/// How a staff above or below some rows of a page lays claim to the ink in them.
struct StaffClaim {
    /// Without a staff nothing is claimed.
    bool exists = false;
    /// Ink belongs to the staff for which its distance times this is less.
    int weight = 1;
    /// The farthest in pixels that ink may lie from the staff's other ink; -1 for any distance.
    int reach = -1;
    /// Whether stems hang below the staff without touching it, as some engravers draw them under tablature.
    bool hasFreeStems = false;
};

enum class InkOwner { None, Upper, Lower };

/// Says for each patch of ink between two staves which of them it belongs to.
///
/// A patch that touches a staff is the staff's. Any other goes with what lies nearest, link by link: a ledger line is
/// near the staff, the next one near it, and the note near that. Letters on one baseline are near each other, however
/// far apart they stand, as chord names over notes of many heights do. This is a minimum spanning forest that grows
/// from the staves (Cousty, Bertrand, Najman and Couprie 2009), over distances measured on a grid of cells by the
/// chamfer of Borgefors (1986).
/// @param patches for each run its patch, as InkRuns::patches gives them
/// @param width of the page in pixels
/// @param spacing from line to line of the notation, in pixels
std::vector<InkOwner> inkOwners(const InkRuns &runs, const std::vector<int> &patches, int count, int width, int spacing,
    const StaffClaim &upper, const StaffClaim &lower);

} // namespace PDFConverter
