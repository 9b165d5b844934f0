// The verbs of the tool. A row of the verb table holds all that help, completion and the parser need.
#pragma once

#include "tools/zynphone/Command.h"

namespace zyn::tool {

Command callsCommand();        ///< calls: the log of recent calls
Command chartCommand();        ///< chart: a recording as a picture
Command completionCommand();   ///< completion: shell completion
Command dialCommand();         ///< dial: place a call
Command hangupCommand();       ///< hangup: end the call
Command doctorCommand();       ///< doctor: why nothing arrives
Command emergencyCommand();    ///< emergency: which numbers are emergency numbers
Command favouritesCommand();   ///< favourites: the five favourites and their activity logs
Command handsetCommand();      ///< handset: the states of the stand-in handset
Command inspectCommand();      ///< inspect, with verify and repair: the files of a store
Command missedCommand();       ///< missed: the counter of missed calls
Command monitorCommand();      ///< monitor: the messages on the channels as they come
Command phoneCommand();        ///< phone: what happens on a running phone server's line
Command pttCommand();          ///< ptt: push-to-talk calls
Command recentsCommand();      ///< recents: the recent-call screens
Command replayCommand();       ///< replay: send a recording again
Command runInHandsetCommand(); ///< run: a command in a handset of its own
Command sendCommand();         ///< send: any message on any channel
Command settingsCommand();     ///< settings: limits and switches of the recent calls
Command prependCommand();      ///< prepend: whether a prefix is put in front of dialed numbers
Command radioCommand();        ///< radio: switch the radio
Command languageCommand();     ///< language: the language of the modem side
Command javaCommand();         ///< java: calls of the Java runtime
Command stkCommand();          ///< stk: calls of the SIM toolkit
Command speedDialCommand();    ///< speed-dial: the numbers of the keys
Command statusCommand();       ///< status: status messages of the phone server by name
Command topCommand();          ///< top: the state of the handset, live

/// @{ Verbs below calls and favourites that have a source of their own.
Command exportRow();           ///< calls export
Command favouritesExportRow(); ///< favourites export
Command favouritesImportRow(); ///< favourites import
Command importRow();           ///< calls import
Command seedRow();             ///< calls seed
/// @}

} // namespace zyn::tool
