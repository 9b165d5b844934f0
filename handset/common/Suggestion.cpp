// The word that somebody may have meant.
#include "handset/common/Suggestion.h"

#include <algorithm>
#include <compare>
#include <numeric>
#include <vector>

using namespace Qt::StringLiterals;

namespace zyn::handset {
namespace {

/// The Levenshtein distance of two words.
struct Edits
{
    qsizetype ofBeginning; ///< to a beginning of the second word
    qsizetype ofWhole;

    auto operator<=>(const Edits&) const = default; // NOLINT(*-zero-as-null-pointer-constant): generated
};

Edits edits(const QString& from, const QString& to)
{
    std::vector<qsizetype> row(static_cast<size_t>(to.size()) + 1);
    std::iota(row.begin(), row.end(), 0);
    for (const QChar character : from) {
        qsizetype diagonal = row[0]++;
        for (size_t column = 1; column < row.size(); ++column) {
            const qsizetype replaced = diagonal + (to[static_cast<qsizetype>(column) - 1] != character);
            diagonal = row[column];
            row[column] = std::min({replaced, row[column] + 1, row[column - 1] + 1});
        }
    }
    return {*std::ranges::min_element(row), row.back()};
}

/// The one of @p known that is nearest to @p word by edit distance, comparing its beginning first; null if the distance
/// is half of the word or more.
QString nearestWord(const QString& word, const QStringList& known)
{
    QString nearest;
    Edits fewest{(word.size() + 1) / 2, 0};
    for (const QString& candidate : known) {
        const Edits candidateEdits = edits(word, candidate);
        if (candidateEdits < fewest) {
            fewest = candidateEdits;
            nearest = candidate;
        }
    }
    return nearest;
}

} // namespace

QString suggestion(const QString& word, const QStringList& known)
{
    const QString nearest = nearestWord(word, known);
    return nearest.isNull() ? QString() : u"; did you mean '%1'?"_s.arg(nearest);
}

} // namespace zyn::handset
