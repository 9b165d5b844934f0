// The public operations of the library that the campaign of failing system calls goes through.
#include "tests/faults/Operations.h"

#include "platform/QCopChannel.h"
#include "platform/UTIL_PhoneStatus.h"
#include "recentcall/utility/RC_Interface.h"
#include "recentcall/utility/RC_TopPals_AL_Interface.h"
#include "recentcall/utility/RecentCall_Client_p.h"
#include "recentcall/utility/RecentCall_Setup.h"
#include "recentcall/utility/store/ActivityLogFile_p.h"
#include "tests/faults/Service.h"
#include "tests/faults/shim/SystemCalls.h"
#include "tests/support/ActivityLogFixture.h"
#include "utility/PHONE_EmergencyCall.h"
#include "utility/PHONE_EmergencyList_p.h"
#include "utility/PHONE_SpeedDial.h"
#include "utility/PHONE_VoiceCallSender.h"
#include "utility/PHONE_VoiceJava.h"
#include "utility/PHONE_VoiceSTK.h"
#include "utility/message/Payload_p.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtTest/QTest>

#include <memory>
#include <thread>

using namespace Qt::StringLiterals;

namespace faults {
namespace {

QString place(const char* name)
{
    return QLatin1String(kPlace) + u'/' + QLatin1String(name);
}

void writeWhole(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        qFatal("cannot write %s", qPrintable(path));
}

QByteArray text(bool isDone)
{
    return isDone ? "1" : "0";
}

// What is in the files.

/// The index of an entry goes on from one to the next in the same process.
QByteArray withoutIndex(QByteArray contact)
{
    constexpr qsizetype kIndex = 228; // behind the call record
    for (int slot = 0; slot < zyn::ContactFile::count(contact); ++slot)
        contact.replace(zyn::ContactFile::offset(slot) + kIndex, 4, QByteArray(4, '\0'));
    return contact;
}

constexpr char kFavouriteNumber[] = "1112222";
constexpr char kNewcomer[] = "3334444";

State filesOnDisk()
{
    State state;
    for (const char* folder : {"/tmp/calls/phone", "/tmp/calls/setup", "/tmp"}) {
        const QDir directory(QString::fromLatin1(folder));
        for (const QString& name : directory.entryList(QDir::Files | QDir::Hidden | QDir::System)) {
            if (folder == QByteArray("/tmp") && !name.startsWith(u"emergency_call"_s))
                continue;
            const QByteArray contents = contentsOf(directory.filePath(name));
            const bool isContact = name == QLatin1String(kFavouriteNumber) || name == QLatin1String(kNewcomer);
            state[QFile::encodeName(name)] = isContact ? withoutIndex(contents) : contents;
        }
    }
    return state;
}

// The store of recent calls.

QList<QByteArray> s_numbers;

PHONE_ENG_RecentCall madeCall(const char* number, int slot)
{
    PHONE_ENG_RecentCall call = StoreFixture::call(RC_CALL_CATEGORY_MISSED, number);
    call.uid = slot;
    call.slot = slot;
    return call;
}

void writeLists()
{
    QDir().mkpath(place("phone"));
    QByteArray missed = zyn::RecordFile::blankImage();
    for (int slot = 0; slot < 3; ++slot)
        zyn::RecordFile::put(missed, slot, madeCall("0301112222", slot));
    writeWhole(place("phone/rc_a"), zyn::RecordFile::blankImage());
    writeWhole(place("phone/rc_d"), missed);
    writeWhole(place("phone/rc_m"), missed);
}

/// Three calls in two of the lists, and a store that knows of them, as that of a service that has just started.
void prepareStore()
{
    StoreFixture::forgetSingletons();
    RecentCall_Setup::instance();
    writeLists();
    StoreFixture::store().clearAllData(); // the counter of uids, too
    writeLists();
    StoreFixture::uids(RC_CALL_CATEGORY_ANSWERED);
    StoreFixture::uids(RC_CALL_CATEGORY_MISSED);
    StoreFixture::uids(RC_CALL_CATEGORY_DIALED);
}

void prepareStart()
{
    prepareStore();
    StoreFixture::forgetSingletons();
}

void prepareStartWithoutFiles()
{
    prepareStart();
    for (const char* name : {"phone/rc_a", "phone/rc_m", "phone/rc_d"})
        QFile::remove(place(name));
}

void prepareStartWithDamage()
{
    prepareStart();
    QFile::resize(place("phone/rc_m"), 1000);
}

QByteArray startStore()
{
    RecentCall_ENG_RecordStore::instance();
    return "made";
}

QByteArray addCall()
{
    PHONE_ENG_RecentCall call = StoreFixture::call(RC_CALL_CATEGORY_MISSED, "0303334444");
    return text(StoreFixture::store().addItem(call));
}

QByteArray changeCall()
{
    return text(StoreFixture::store().modifyItem(madeCall("0305556666", 1)));
}

QByteArray removeCall()
{
    return text(StoreFixture::store().removeItem(madeCall("0301112222", 1)));
}

QByteArray removeCalls()
{
    return text(StoreFixture::store().removeItems(RC_CALL_CATEGORY_MISSED));
}

QByteArray clearAllCalls()
{
    StoreFixture::store().clearAllData();
    return "done";
}

QByteArray listCalls()
{
    QByteArray result;
    for (const int uid : StoreFixture::uids(RC_CALL_CATEGORY_MISSED))
        result += QByteArray::number(uid) + ' ';
    return result;
}

QByteArray lastDialed()
{
    QString number;
    return RC_Interface().getLastDialedNumber(number) ? number.toLatin1() : QByteArray("0");
}

// The activity log.

void prepareFavourites()
{
    RecentCall_Setup::instance();
    ActivityLog_ENG_RecordStore::destroy();
    QDir().mkpath(place("phone"));
    QFile::remove(place("phone/topPalsDetails"));
    QFile::remove(place("phone/") + QLatin1String(kFavouriteNumber));
    QFile::remove(place("phone/") + QLatin1String(kNewcomer));
    activity::revamp({}, QLatin1String(kFavouriteNumber));
    activity::add(QLatin1String(kFavouriteNumber), 5);
    activity::add(QLatin1String(kFavouriteNumber), 7);
}

void prepareFavouritesStart()
{
    prepareFavourites();
    ActivityLog_ENG_RecordStore::destroy();
}

void prepareFavouritesStartWithoutFile()
{
    prepareFavouritesStart();
    QFile::remove(place("phone/topPalsDetails"));
}

QByteArray startFavourites()
{
    ActivityLog_ENG_RecordStore::instance();
    return "made";
}

QByteArray addFavourite()
{
    return QByteArray::number(activity::revamp({}, QLatin1String(kNewcomer)));
}

QByteArray replaceFavourite()
{
    return QByteArray::number(activity::revamp(QLatin1String(kFavouriteNumber), QLatin1String(kNewcomer)));
}

QByteArray removeFavourite()
{
    return QByteArray::number(activity::revamp(QLatin1String(kFavouriteNumber), {}));
}

QByteArray addEntry()
{
    return text(activity::add(QLatin1String(kFavouriteNumber), 9) >= 0);
}

QByteArray changeEntry()
{
    return text(activity::log().modifyTopPalsAvlItem(activity::entry(QLatin1String(kFavouriteNumber), 11, 1)) == 1);
}

QByteArray removeEntry()
{
    PHONE_ENG_ActivityLog record = activity::entry(QLatin1String(kFavouriteNumber), 5, 0);
    return text(activity::log().removeTopPalsAvlItem(record) == 1);
}

QByteArray listEntries()
{
    const QByteArray result = activity::read(QLatin1String(kFavouriteNumber)).toLatin1();
    return result.startsWith('1') ? result : result.first(1);
}

QByteArray countUnread()
{
    TopPals_Missed_Details details;
    details.number = QLatin1String(kFavouriteNumber);
    const int result = RC_TopPals_AL_Interface::instance()->getUnreadCount(details);
    return QByteArray::number(result) + ' ' + QByteArray::number(details.missedCallCount) + ' '
           + QByteArray::number(details.unreadMsgCount);
}

// Settings.

constexpr char kStoredSettings[] = "[RECENTCALL_SET]\nmaxMissedCall=40\n\n[Turbo Dialing]\n1=0301\n2=0302\n3=0303\n";

void prepareSettings()
{
    QDir().mkpath(place("setup"));
    writeWhole(place("setup/test.cfg"), "[Group]\nkey=old\nother=7\n");
    writeWhole(place("setup/zyn_app4.cfg"), kStoredSettings);
    writeWhole(place("setup/zyn_handset.cfg"), "[Handset]\nSimCardStatus=3\n");
}

void prepareNoSettings()
{
    QDir(place("setup")).removeRecursively();
}

QByteArray setSetting()
{
    SETUP_SET_Manager settings(place("setup/test.cfg"), false);
    return text(settings.setSettingInfo(u"Group"_s, u"key"_s, u"new"_s));
}

QByteArray getSetting()
{
    SETUP_SET_Manager settings(place("setup/test.cfg"), false);
    QString value;
    settings.getSettingInfo(u"Group"_s, u"key"_s, value, u"default"_s);
    return value.toLatin1();
}

QByteArray setAllSpeedDials()
{
    return text(PHONE_SpeedDial().setTurboDialing({u"1"_s, u"2"_s, u"3"_s, u"4"_s}));
}

QByteArray simCard()
{
    return QByteArray::number(int{UTIL_GetSimCardStatus()});
}

// Emergency numbers.

void prepareEmergency()
{
    QFile::remove(QLatin1String(zyn::emergency::kListFile));
    zyn::emergency::writeList({u"112"_s, u"911"_s, u"08"_s});
}

void prepareShortEmergency()
{
    QFile::remove(QLatin1String(zyn::emergency::kListFile));
    zyn::emergency::writeList({u"08"_s});
}

void prepareLongEmergency()
{
    QFile::remove(QLatin1String(zyn::emergency::kListFile));
    QStringList numbers;
    for (int i = 0; i < 300; ++i)
        numbers += QString::number(1000 + i);
    zyn::emergency::writeList(numbers + QStringList{u"08"_s});
}

void prepareNoEmergency()
{
    QFile::remove(QLatin1String(zyn::emergency::kListFile));
}

QByteArray writeEmergency()
{
    return text(zyn::emergency::writeList({u"112"_s, u"999"_s}));
}

QByteArray listEmergency()
{
    return zyn::emergency::readList().join(u' ').toLatin1();
}

QByteArray isEmergency()
{
    char number[] = "08";
    return text(PHONE_IsEmergencyCall(number));
}

QByteArray mayBecomeEmergency()
{
    return text(PHONE_IsEmergencyCallInput(u"0"_s));
}

// Channels. What is heard is counted for each round by a name of its own.

constexpr char kChannel[] = "/ZYN/faults";
constexpr int kPatience = 20'000;
constexpr int kShortPatience = 1000; ///< for what may be lost

class Listener : public QCopChannel
{
public:
    explicit Listener(const char* channel)
        : QCopChannel(channel)
    {}

    void receive(const QCString& message, const QByteArray& data) override { heard += message + ' ' + data + '\n'; }

    QByteArray heard;
};
std::unique_ptr<Listener> s_listener;
QByteArray s_message;
bool s_isAccepted = false;

void settle()
{
    for (int i = 0; i < 5; ++i)
        QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

void sendFromThread()
{
    std::thread([] { s_isAccepted = QCopChannel::send(kChannel, s_message, "data"); }).join();
}

void prepareListener(const char* channel)
{
    if (!s_listener || s_listener->channel() != channel)
        s_listener = std::make_unique<Listener>(channel);
    static int round = 0;
    s_message = "message" + QByteArray::number(++round);
    if (!QTest::qWaitFor([] { return s_listener->isListening(); }, kPatience))
        qFatal("no listener");
    settle();
    s_listener->heard.clear();
    s_isAccepted = false;
}

void prepareSend()
{
    prepareListener(kChannel);
}

void prepareNoListener()
{
    s_listener.reset();
    prepareListener(kChannel);
    s_listener.reset();
}

void prepareReceive()
{
    prepareListener(kChannel);
    sendFromThread();
}

void prepareVoiceCalls()
{
    prepareListener(zyn::kVoiceCallChannel);
}

QByteArray send()
{
    s_isAccepted = QCopChannel::send(kChannel, s_message, "data");
    return text(s_isAccepted);
}

QByteArray sendFirst()
{
    sendFromThread();
    return text(s_isAccepted);
}

QByteArray listen()
{
    s_listener = std::make_unique<Listener>(kChannel);
    shim::disarm();
    return text(s_listener->isListening());
}

QByteArray receive()
{
    s_isAccepted = QTest::qWaitFor([] { return s_listener->heard.contains(s_message); },
                                   shim::isFaulty() ? kShortPatience : kPatience);
    return text(s_isAccepted);
}

QByteArray listChannels()
{
    QByteArray result;
    for (const QCString& channel : QCopChannel::channels())
        result += channel + ' ';
    return result;
}

QByteArray placeCall()
{
    s_isAccepted = PHONE_VoiceCallSender().makeCall("0301112222", 0);
    return text(s_isAccepted);
}

/// How often the message was heard; one that was accepted is waited for.
State heard(const QByteArray& message)
{
    if (s_isAccepted && !QTest::qWaitFor([&] { return s_listener->heard.contains(message); }, kPatience))
        return {{"heard", "never"}};
    settle();
    return {{"heard", QByteArray::number(s_listener->heard.count(message))}};
}

State heardMessage()
{
    return heard(s_message + ' ');
}

State heardVoiceCall()
{
    return heard(zyn::kMakeCall.name);
}

State unheard()
{
    return {{"heard", "0"}};
}

State listening()
{
    return {{"listens", "1"}};
}

/// A listener that could not be set up comes back by itself.
State listens()
{
    const bool isListening = s_listener && QTest::qWaitFor([] { return s_listener->isListening(); }, kPatience);
    if (!isListening)
        return {{"listens", "never"}};
    s_listener->heard.clear();
    sendFromThread();
    State state{{"listens", heardMessage()["heard"]}};
    s_listener.reset(); // with the socket that it had before it came back
    settle();
    return state;
}

// The services' sockets.

QByteArray s_list;

QByteArray listOf(RC_Interface& calls)
{
    QPtrList<RC_RecordInterface> list;
    const int result = calls.getRecordList(list, RC_CALL_CATEGORY_MISSED, RC_CALL_TYPE_VOICE);
    QByteArray text = QByteArray::number(result);
    for (const RC_RecordInterface* call : list)
        text += ' ' + call->getPhoneNumber().toLatin1() + (call->isRead() ? "!" : "");
    return text;
}

QByteArray currentList()
{
    RC_Interface calls;
    return listOf(calls);
}

std::unique_ptr<RC_RecordInterfaceImpl> newCall(const char* number)
{
    auto call = std::make_unique<RC_RecordInterfaceImpl>(QString::fromLatin1(number),
                                                         QDateTime::fromSecsSinceEpoch(1'700'000'000), 0);
    call->setCategory(RC_CALL_CATEGORY_MISSED);
    call->setCallType(RC_CALL_TYPE_VOICE);
    return call;
}

int32_t s_uid = 0; ///< of the call to delete

void prepareService()
{
    RC_Interface calls;
    for (const QByteArray& wanted : {QByteArray("0 111"), QByteArray("0 222 111")}) {
        if (wanted == "0 111")
            calls.deleteRecordAll(RC_CALL_CATEGORY_MISSED, RC_CALL_TYPE_VOICE);
        calls.addRecord(*newCall(wanted == "0 111" ? "111" : "222"));
        if (!QTest::qWaitFor([&] { return currentList() == wanted; }, kPatience))
            qFatal("the service has %s", currentList().constData());
    }
    QPtrList<RC_RecordInterface> list;
    calls.getRecordList(list, RC_CALL_CATEGORY_MISSED, RC_CALL_TYPE_VOICE);
    s_uid = list.first()->getUID();
}

PHONE_ENG_RecentCall firstCall()
{
    PHONE_ENG_RecentCall call = madeCall("222", 0);
    call.uid = s_uid;
    return call;
}

QByteArray serviceAdd()
{
    return QByteArray::number(RC_Interface().addRecord(*newCall("333")));
}

QByteArray serviceDelete()
{
    PHONE_ENG_RecentCall call = firstCall();
    return QByteArray::number(RC_Interface().deleteRecord(RC_RecordInterfaceImpl(new PHONE_ENG_RecentCall(call))));
}

QByteArray serviceDeleteAll()
{
    return QByteArray::number(RC_Interface().deleteRecordAll(RC_CALL_CATEGORY_MISSED, RC_CALL_TYPE_VOICE));
}

QByteArray serviceMarkRead()
{
    return QByteArray::number(zyn::recentcall::markRead(firstCall()));
}

QByteArray serviceList()
{
    return currentList();
}

State serviceCalls()
{
    return {{"calls", currentList()}};
}

State nothing()
{
    return {};
}

PHONE_VoiceSTK* s_stk = nullptr;

void closeVoice()
{
    PHONE_VoiceSTK_DeInit(s_stk);
    s_stk = nullptr;
    PHONE_VoiceCall_Java_DeInit(1);
}

void openVoice()
{
    closeVoice();
    s_stk = PHONE_VoiceSTK_Init();
    if (!s_stk || PHONE_VoiceCall_Java_Init([](char) {}) != 1)
        qFatal("no phone server");
}

QByteArray openStk()
{
    s_stk = PHONE_VoiceSTK_Init();
    return text(s_stk != nullptr);
}

QByteArray callFromStk()
{
    PHONE_VoiceSTK_PARAMETER parameter = {};
    return QByteArray::number(PHONE_VOICESTK_MakeCall(s_stk, &parameter));
}

QByteArray closeStk()
{
    PHONE_VoiceSTK_DeInit(s_stk);
    s_stk = nullptr;
    return "closed";
}

QByteArray openJava()
{
    return QByteArray::number(PHONE_VoiceCall_Java_Init([](char) {}));
}

QByteArray endFromJava()
{
    return QByteArray::number(PHONE_VoiceCall_Java_EndCall(1));
}

// A silent operation says nothing of whether all was done: its result is none, or the interface has it ignore a part.
constexpr bool kSilent = true;
constexpr bool kWrites = true;

constexpr Operation kOperations[] = {
    {"store: start", prepareStart, startStore, "made", Left::Nothing, filesOnDisk, kSilent},
    {"store: start without files", prepareStartWithoutFiles, startStore, "made", Left::EachFile, filesOnDisk, kSilent,
     kWrites},
    {"store: start with damage", prepareStartWithDamage, startStore, "made", Left::EachFile, filesOnDisk, kSilent,
     kWrites},
    {"store: add", prepareStore, addCall, "0", Left::Slots, filesOnDisk, false, kWrites},
    {"store: change", prepareStore, changeCall, "0", Left::Slots, filesOnDisk, false, kWrites},
    {"store: remove", prepareStore, removeCall, "0", Left::Slots, filesOnDisk, false, kWrites},
    {"store: remove a list", prepareStore, removeCalls, "0", Left::Slots, filesOnDisk, kSilent, kWrites},
    {"store: clear", prepareStore, clearAllCalls, "done", Left::Slots, filesOnDisk, kSilent, kWrites},
    {"store: list", prepareStore, listCalls, "", Left::Nothing, filesOnDisk},
    {"last dialed number", prepareStore, lastDialed, "0", Left::Nothing, filesOnDisk},
    {"favourites: start", prepareFavouritesStart, startFavourites, "made", Left::Nothing, filesOnDisk, kSilent},
    {"favourites: start without file", prepareFavouritesStartWithoutFile, startFavourites, "made", Left::EachFile,
     filesOnDisk, kSilent, kWrites},
    {"favourites: add", prepareFavourites, addFavourite, "0", Left::Slots, filesOnDisk, kSilent, kWrites},
    {"favourites: replace", prepareFavourites, replaceFavourite, "0", Left::Slots, filesOnDisk, kSilent, kWrites},
    {"favourites: remove", prepareFavourites, removeFavourite, "0", Left::Slots, filesOnDisk, false, kWrites},
    {"entry: add", prepareFavourites, addEntry, "0", Left::Slots, filesOnDisk, false, kWrites},
    {"entry: change", prepareFavourites, changeEntry, "0", Left::Slots, filesOnDisk, false, kWrites},
    {"entry: remove", prepareFavourites, removeEntry, "0", Left::Slots, filesOnDisk, false, kWrites},
    {"entry: list", prepareFavourites, listEntries, "0", Left::Nothing, filesOnDisk},
    {"entry: count unread", prepareFavourites, countUnread, "0 0 0", Left::Nothing, filesOnDisk},
    {"settings: set", prepareSettings, setSetting, "0", Left::Whole, filesOnDisk, false, kWrites},
    {"settings: set the first", prepareNoSettings, setSetting, "0", Left::Whole, filesOnDisk, false, kWrites},
    {"settings: get", prepareSettings, getSetting, "default", Left::Nothing, filesOnDisk},
    {"speed dial: set four", prepareSettings, setAllSpeedDials, "0", Left::Lines, filesOnDisk, false, kWrites},
    {"SIM card status", prepareSettings, simCard, "0", Left::Nothing, filesOnDisk},
    {"emergency: write", prepareEmergency, writeEmergency, "0", Left::Whole, filesOnDisk, false, kWrites},
    {"emergency: write the first", prepareNoEmergency, writeEmergency, "0", Left::Whole, filesOnDisk, false, kWrites},
    {"emergency: list", prepareEmergency, listEmergency, "", Left::Nothing, filesOnDisk},
    {"emergency: is one", prepareEmergency, isEmergency, "0", Left::Nothing, filesOnDisk},
    {"emergency: is the only one", prepareShortEmergency, isEmergency, "0", Left::Nothing, filesOnDisk},
    {"emergency: is one of many", prepareLongEmergency, isEmergency, "0", Left::Nothing, filesOnDisk},
    {"emergency: may become one", prepareEmergency, mayBecomeEmergency, "0", Left::Nothing, filesOnDisk},
    {"channel: send", prepareSend, send, "0", Left::Whole, heardMessage, false, false, unheard},
    {"channel: send the first", prepareSend, sendFirst, "0", Left::Whole, heardMessage, false, false, unheard},
    {"channel: listen", prepareNoListener, listen, "0", Left::Nothing, listens, false, false, listening},
    {"channel: receive", prepareReceive, receive, "0", Left::Whole, heardMessage, false, false, unheard},
    {"channel: list", prepareSend, listChannels, "", Left::Nothing, nothing},
    {"voice call: place", prepareVoiceCalls, placeCall, "0", Left::Whole, heardVoiceCall, false, false, unheard},
    {"service: add", prepareService, serviceAdd, "3", Left::Whole, serviceCalls},
    {"service: delete", prepareService, serviceDelete, "3", Left::Whole, serviceCalls},
    {"service: delete all", prepareService, serviceDeleteAll, "3", Left::Whole, serviceCalls},
    {"service: mark read", prepareService, serviceMarkRead, "2", Left::Whole, serviceCalls},
    {"service: list", prepareService, serviceList, "3", Left::Nothing, serviceCalls},
    {"SIM toolkit: open", closeVoice, openStk, "0", Left::Whole, nothing},
    {"SIM toolkit: call", openVoice, callFromStk, "-1", Left::Whole, nothing},
    {"SIM toolkit: close", openVoice, closeStk, "closed", Left::Whole, nothing, kSilent},
    {"Java: open", closeVoice, openJava, "0", Left::Whole, nothing},
    {"Java: end a call", openVoice, endFromJava, "-1", Left::Whole, nothing},
};

} // namespace

std::span<const Operation> operations()
{
    return kOperations;
}

void enterPlace()
{
    qputenv("ZYN_LOCAL_APP_WRITE_PATH", kPlace);
    qputenv("ZYN_APP_WRITE_PATH", kPlace);
    qputenv("ZYN_QCOP_PATH", "/tmp/calls-channels");
    QDir().mkpath(QLatin1String(kPlace));
}

void leaveOperation()
{
    closeVoice();
    settle();
}

} // namespace faults
