// What was measured, as a table, as JSON, as a picture and in the document.
#pragma once

#include "bench/Sampler.h"

#include <QtCore/QByteArray>
#include <QtCore/QString>

namespace bench {

using Results = std::vector<MeasuredRow>;

/// "4.21 µs": three digits, in the unit that suits.
QString duration(double nanoseconds);

/// A line for each row, and what was not measured because it is not installed.
QString textTable(const Results& results);
/// The same as a table of a document.
QString markdownTable(const Results& results);
/// A list of objects, one for each row: name, ours_ns, limit_ns, ratio_to_limit, goal, peers and more.
QByteArray json(const Results& results);
/// A picture: for each row how long ours, the limit and the best peer take, on a scale of powers of ten.
QString svg(const Results& results);

/// What the machine is, in a line.
QString machine();

/// Puts @p text between the lines "<!-- NAME -->" and "<!-- /NAME -->" of the file @p path.
void replaceInDocument(const QString& path, const QString& name, const QString& text);

} // namespace bench
