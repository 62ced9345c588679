#pragma once

class QWidget;

namespace TabOrder {

/// Lets Tab visit the controls under `root` in the order in which they and their parents were made, which is the
/// reading order. To be called again when controls were added.
void followReadingOrder(QWidget &root);

} // namespace TabOrder
