#pragma once

#include <initializer_list>

class QWidget;

namespace TabOrder {

/// Lets Tab visit the controls of one part of the window after the other, within each in the order in which they and
/// their parents were made. To be called again when controls were added.
void followReadingOrder(std::initializer_list<QWidget *> parts);

} // namespace TabOrder
