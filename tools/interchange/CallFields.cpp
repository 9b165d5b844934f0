// The fields of a call, all of them, as values that can be written down and read back.
#include "tools/interchange/CallFields.h"

#include "recentcall/utility/store/StoreFile_p.h"
#include "tools/interchange/FieldForms.h"
#include "tools/zynphone/CallText.h"

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

using Call = PHONE_ENG_RecentCall;

constexpr FieldForm kListForm{FieldForm::Text,
                              [](const QByteArray& bytes) {
                                  return QJsonValue(
                                      categoryWord(static_cast<RC_CALL_CATEGORY_T>(numberOfBytes(bytes))));
                              },
                              [](const QString& text, const QString& name, qsizetype) {
                                  return bytesOfNumber(wordNamed(kLists, text, name).value);
                              }};

constexpr FieldForm kTypeForm{
    FieldForm::Text,
    [](const QByteArray& bytes) {
        return QJsonValue(wordFor(kTypes, static_cast<RC_CALL_TYPE_T>(numberOfBytes(bytes))));
    },
    [](const QString& text, const QString& name, qsizetype) { return bytesOfNumber(callTypeNamed(text, name)); }};

constexpr StoredField kFields[] = {
    {"uid", offsetof(Call, uid), sizeof Call::uid, &kNumberForm, StoredField::OfStore},
    {"slot", offsetof(Call, slot), sizeof Call::slot, &kNumberForm, StoredField::OfStore},
    {"inUse", offsetof(Call, inUse), sizeof Call::inUse, &kFlagForm, StoredField::OfStore},
    {"list", offsetof(Call, category), sizeof Call::category, &kListForm, StoredField::Required},
    {"number", offsetof(Call, phoneNumber), sizeof Call::phoneNumber, &kLatin1Form, StoredField::Required},
    {"name", offsetof(Call, displayName), sizeof Call::displayName, &kLatin1Form},
    {"start", offsetof(Call, startTime), sizeof Call::startTime, &kTimeForm, StoredField::Required},
    {"duration", offsetof(Call, duration), sizeof Call::duration, &kNumberForm},
    {"type", offsetof(Call, callType), sizeof Call::callType, &kTypeForm},
    {"session", offsetof(Call, pttSessionId), sizeof Call::pttSessionId, &kUtf8Form},
    {"read", offsetof(Call, readFlags), sizeof Call::readFlags, &kFlagForm},
    {"completed", offsetof(Call, completed), sizeof Call::completed, &kFlagForm},
    {"pttIdType", offsetof(Call, pttIdType), sizeof Call::pttIdType, &kNumberForm},
    {"pttPartyType", offsetof(Call, pttPartyType), sizeof Call::pttPartyType, &kNumberForm},
    {"pttExtra1", offsetof(Call, pttExtra1), sizeof Call::pttExtra1, &kNumberForm},
    {"pttExtra2", offsetof(Call, pttExtra2), sizeof Call::pttExtra2, &kNumberForm},
    {"reservedA", offsetof(Call, reservedA), sizeof Call::reservedA, &kNumberForm},
    {"reservedB", offsetof(Call, reservedB), sizeof Call::reservedB, &kNumberForm},
    {"reserved42", offsetof(Call, reserved42), sizeof Call::reserved42, &kBlockForm},
    {"reserved53", offsetof(Call, reserved53), sizeof Call::reserved53, &kBlockForm},
    {"reserved65", offsetof(Call, reserved65), sizeof Call::reserved65, &kBlockForm},
    {"reserved89", offsetof(Call, reserved89), sizeof Call::reserved89, &kBlockForm},
    {"reserved205", offsetof(Call, reserved205), sizeof Call::reserved205, &kBlockForm},
};
static_assert(isWhole(kFields, sizeof(Call)));

} // namespace

const RecordSchema& callSchema()
{
    static const RecordSchema schema{"call", {std::begin(kFields), std::end(kFields)}, bytesOf(Call()).toByteArray()};
    return schema;
}

} // namespace zyn::tool
