// A kind of store file that can be inspected.
#include "tools/store/FileKind.h"

using namespace Qt::StringLiterals;

namespace zyn::tool {

QString placeText(const char* placeWord, const Problem& problem)
{
    if (problem.place == Problem::kWholeFile)
        return problem.text;
    return u"%1 %2: "_s.arg(QLatin1String(placeWord)).arg(problem.place) + problem.text;
}

QStringList problemTexts(const FileFindings& findings)
{
    QStringList texts;
    for (const Problem& problem : findings.problems)
        texts += placeText(findings.placeWord, problem);
    return texts;
}

} // namespace zyn::tool
