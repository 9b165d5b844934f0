// The log of recent calls, for applications: the interface, and the older ones.
#include "recentcall/utility/RC_Interface.h"

#include "platform/CommandFrame_p.h"
#include "recentcall/utility/PHONE_RecentCall.h"
#include "recentcall/utility/PHONE_RecentCallInterface.h"
#include "recentcall/utility/RecentCall_Client_p.h"
#include "recentcall/utility/RecentCall_ENG_RecordStore.h"
#include "recentcall/utility/store/StoreFile_p.h"

#include <algorithm>

namespace rc = zyn::recentcall;
using Record = PHONE_ENG_RecentCall;

namespace {

constexpr int kFailure = 3;

/// The result of the classes for one of the plain functions' results: 0, 1, and 3 for anything else.
int interfaceResult(int result)
{
    return result == rc::Success || result == rc::NoSuchRecord ? result : kFailure;
}

/// Calls @p request with a copy of the wrapped record; the interface's failure when there is none.
int requestWithRecord(int (*request)(PHONE_ENG_RecentCall&), const RC_RecordInterface& record)
{
    const auto* wrapper = dynamic_cast<const RC_RecordInterfaceImpl*>(&record);
    if (!wrapper)
        return kFailure;
    PHONE_ENG_RecentCall copy = *wrapper->getData();
    return interfaceResult(request(copy));
}

/// Appends the records of a successful list answer, whose count and limit are the service's word alone.
void appendRecords(QPtrList<RC_RecordInterface>& list, std::span<const std::byte> data)
{
    if (data.size() < sizeof(rc::ListHeader))
        return;
    const auto header = zyn::toPlain<rc::ListHeader>(data);
    data = data.subspan(sizeof header);
    for (int left = std::min(header.count, header.limit); left > 0 && data.size() >= sizeof(Record); --left) {
        list.append(new RC_RecordInterfaceImpl(new Record(zyn::toPlain<Record>(data))));
        data = data.subspan(sizeof(Record));
    }
}

} // namespace

RC_Interface::RC_Interface() = default;

RC_Interface::~RC_Interface() = default;

int RC_Interface::addRecord(const RC_RecordInterface& record)
{
    return requestWithRecord(PHONE_RecentCall_AddRecord, record);
}

int RC_Interface::deleteRecord(const RC_RecordInterface& record)
{
    return requestWithRecord(PHONE_RecentCall_DeleteRecord, record);
}

int RC_Interface::deleteRecordAll(RC_CALL_CATEGORY_T category, RC_CALL_TYPE_T callType)
{
    return interfaceResult(PHONE_RecentCall_DeleteAll(category, callType));
}

int RC_Interface::getRecordList(QPtrList<RC_RecordInterface>& list, RC_CALL_CATEGORY_T category,
                                RC_CALL_TYPE_T callType)
{
    const zyn::posix::UniqueFd connection = rc::connectToService();
    if (!connection.isValid())
        return kFailure;
    list.setAutoDelete(true);
    const rc::Selection selection{category, callType};
    const auto answer = rc::request(connection, rc::ListRecords, std::as_bytes(std::span(&selection, 1)));
    const rc::Status status = rc::statusOf(answer.get());
    if (status == rc::Success) {
        list.clear();
        appendRecords(list, zyn::commandData(*answer));
    }
    return interfaceResult(status);
}

bool RC_Interface::getLastDialedNumber(QString& number)
{
    QSortedList<PHONE_ENG_RecentCall> dialed;
    dialed.setAutoDelete(true);
    RecentCall_ENG_RecordStore::instance()->readDataList(dialed, RC_CALL_CATEGORY_DIALED);
    if (dialed.isEmpty())
        return false;
    number = dialed.getFirst()->getPhoneNumber();
    return true;
}

PHONE_RecentCall_Interface::PHONE_RecentCall_Interface() = default;

PHONE_RecentCall_Interface::~PHONE_RecentCall_Interface() = default;

int PHONE_RecentCall_Interface::rc_add(PHONE_ENG_RecentCall record)
{
    return interfaceResult(PHONE_RecentCall_AddRecord(record));
}

int PHONE_RecentCall_Interface::rc_delete(const PHONE_ENG_RecentCall& record)
{
    PHONE_ENG_RecentCall copy = record;
    return interfaceResult(PHONE_RecentCall_DeleteRecord(copy));
}

int PHONE_RecentCall_Interface::rc_deleteAll(CALL_CATEGORY_T category)
{
    return interfaceResult(PHONE_RecentCall_DeleteAll(category, RC_CALL_TYPE_VOICE));
}

bool PHONE_RecentCall_Interface::getLastDialedNumber(QString& number)
{
    return RC_Interface().getLastDialedNumber(number);
}

PHONE_RecentCallInterface::PHONE_RecentCallInterface() = default;

PHONE_RecentCallInterface::~PHONE_RecentCallInterface() = default;

bool PHONE_RecentCallInterface::getLastDialedNumber(QString& number)
{
    return RC_Interface().getLastDialedNumber(number);
}
