#pragma once

class PageList;

/// Describes the rows of a page list to assistive tools: buttons called "Page 1", "Page 2", ...
namespace PageListAccessible {

/// Makes the toolkit ask here for every page list; later calls do nothing.
void install();

/// The keyboard has come to the row of `page`.
void announceFocus(PageList &list, int page);

} // namespace PageListAccessible
