// The recent-call list of a handset: the calls of all lists, newest first.
//
// On a desk: zyn-recentcalld &
//            zynphone calls add missed 112
//            recent_calls
#include <QtCore/QTextStream>

#include <recentcall/utility/RC_Interface.h>

#include <cstdlib>

int main()
{
    QPtrList<RC_RecordInterface> calls;
    if (RC_Interface().getRecordList(calls, RC_CALL_CATEGORY_ALL, RC_CALL_TYPE_VOICE) != 0) {
        QTextStream(stderr) << "Cannot reach the recent-call service.\n";
        return EXIT_FAILURE;
    }
    QTextStream out(stdout);
    for (const RC_RecordInterface* call : calls) {
        const QString start = call->getStartDateTime().toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"));
        out << start << "  " << call->getPhoneNumber()
            << (call->getCategory() == RC_CALL_CATEGORY_MISSED ? "  missed\n" : "\n");
    }
    out.flush();
    return out.status() == QTextStream::Ok ? EXIT_SUCCESS : EXIT_FAILURE;
}
