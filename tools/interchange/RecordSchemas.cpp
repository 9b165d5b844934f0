// The fields of calls and of favourites' entries, with their names in CSV and JSON.
#include "tools/interchange/RecordSchemas.h"

#include "handset/common/Text.h"
#include "recentcall/utility/ActivityLog_ENG_RecordStore.h"
#include "recentcall/utility/store/StoreFile_p.h"
#include "tools/zynphone/RecordText.h"
#include "utility/FixedText_p.h"

#include <cstring>
#include <iterator>
#include <span>

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

using Entry = PHONE_ENG_ActivityLog;
using Favourite = TopPalNumberDetail;

/// The offset of the entry, after its favourite.
constexpr size_t kEntry = sizeof(Favourite);

/// Unlike a call in the call log, an entry may have no list, or any number for one.
constexpr FieldForm kAnyListForm{FieldForm::Text,
                                 [](const QByteArray& bytes) {
                                     return QJsonValue(
                                         categoryWord(static_cast<RC_CALL_CATEGORY_T>(numberOfBytes(bytes))));
                                 },
                                 [](const QString& text, const QString& name, qsizetype) {
                                     const std::optional<int> number = handset::wholeNumber(text);
                                     return bytesOfNumber(number ? *number : wordNamed(kCategories, text, name).value);
                                 }};

constexpr StoredField kFavouriteFields[] = {
    {"favourite", offsetof(Favourite, phoneNumber), sizeof Favourite::phoneNumber, &kLatin1Form, StoredField::Required},
    {"favouritePlace", offsetof(Favourite, nthFileItem), sizeof Favourite::nthFileItem, &kNumberForm,
     StoredField::OfStore},
};

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Winvalid-offsetof" // as where the record is declared
constexpr StoredField kEntryFields[] = {
    {"place", kEntry + offsetof(Entry, topPalsAvlPos), sizeof Entry::topPalsAvlPos, &kNumberForm, StoredField::OfStore},
    {"index", kEntry + offsetof(Entry, topPalsAvlIndex), sizeof Entry::topPalsAvlIndex, &kNumberForm,
     StoredField::OfStore},
    {"messageType", kEntry + offsetof(Entry, msgType), sizeof Entry::msgType, &kNumberForm},
    {"messageInfo", kEntry + offsetof(Entry, msgInfo), sizeof Entry::msgInfo, &kNumberForm},
    {"message", kEntry + offsetof(Entry, msgString), sizeof Entry::msgString, &kLatin1Form},
    {"flagA", kEntry + offsetof(Entry, flagA), sizeof Entry::flagA, &kFlagForm},
    {"flagB", kEntry + offsetof(Entry, flagB), sizeof Entry::flagB, &kFlagForm},
    {"reserved285", kEntry + offsetof(Entry, reserved285), sizeof Entry::reserved285, &kBlockForm},
    {"padding298", kEntry + offsetof(Entry, padding298), sizeof Entry::padding298, &kBlockForm},
};
#pragma GCC diagnostic pop

/// The fields of the entry outside its call.
constexpr size_t sizeOf(std::span<const StoredField> fields)
{
    size_t size = 0;
    for (const StoredField& field : fields)
        size += field.size;
    return size;
}
static_assert(sizeof(PHONE_ENG_RecentCall) + sizeOf(kEntryFields) == sizeof(Entry));

/// Adapts a field of a call to the call in an entry, of which the store assigns only the flag inUse and the number.
StoredField inEntry(StoredField field)
{
    const QLatin1String name(field.name);
    field.offset += kEntry;
    field.presence = StoredField::Optional;
    if (name == "start"_L1)
        field.presence = StoredField::Required;
    if (name == "list"_L1)
        field.form = &kAnyListForm;
    return field;
}

std::vector<StoredField> allFields()
{
    std::vector<StoredField> fields(std::begin(kFavouriteFields), std::end(kFavouriteFields));
    for (const StoredField& field : callSchema().fields)
        fields.push_back(inEntry(field));
    fields.insert(fields.end(), std::begin(kEntryFields), std::end(kEntryFields));
    return fields;
}

QByteArray blank()
{
    Entry entry;
    entry.inUse = 1;
    return favouriteRecord(Favourite::kFree, {}, entry);
}

} // namespace

const RecordSchema& callSchema()
{
    static const RecordSchema schema{"call", {std::begin(kFields), std::end(kFields)}, bytesOf(Call()).toByteArray()};
    return schema;
}

const RecordSchema& favouriteSchema()
{
    static const RecordSchema schema{"row", allFields(), blank()};
    return schema;
}

QByteArray favouriteRecord(int place, const QString& number, const PHONE_ENG_ActivityLog& entry)
{
    Favourite favourite{place};
    storeText(favourite.phoneNumber, number.toLatin1());
    return bytesOf(favourite).toByteArray() + QByteArray(reinterpret_cast<const char*>(&entry), sizeof entry);
}

QString favouriteNumber(const QByteArray& record)
{
    const auto favourite =
        toPlain<Favourite>(std::as_bytes(std::span(record.constData(), static_cast<size_t>(record.size()))));
    return latin1Text(favourite.phoneNumber);
}

void readEntry(PHONE_ENG_ActivityLog& entry, const QByteArray& record)
{
    std::memcpy(static_cast<void*>(&entry), record.constData() + kEntry, sizeof entry);
}

} // namespace zyn::tool
