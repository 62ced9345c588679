#pragma once

class PageList;

/// Tells assistive tools of a page list's rows: buttons called "Page 1", "Page 2", ...
namespace PageListAccessible {

/// Makes the toolkit ask here for every page list; later calls do nothing.
void install();

/// The keyboard has come to the row of `page`.
void tellFocus(PageList &list, int page);

} // namespace PageListAccessible
