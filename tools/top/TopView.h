// The layout of the phone's state.
#pragma once

#include <QtCore/QJsonObject>
#include <QtCore/QString>

namespace zyn::tool {

class Canvas;
class PhoneState;

/// Draws @p state on @p canvas without its first @p scrolled lines: in two columns if it is wide enough, as one line if
/// it is too small. Returns how many lines are above the canvas: never more than keeps it full.
int layOut(const PhoneState& state, Canvas& canvas, int scrolled);

/// The state as an object for each section, of a text for each label; null is unknown.
QJsonObject stateObject(const PhoneState& state);

/// The state as lines of printable text.
QString stateText(const PhoneState& state);

} // namespace zyn::tool
