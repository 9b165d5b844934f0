<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en_US">
<context>
    <name>LockScreen</name>
    <message numerus="yes">
        <source>%n missed call(s)</source>
        <translation>
            <numerusform>%n missed call</numerusform>
            <numerusform>%n missed calls</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>MissedCard</name>
    <message numerus="yes">
        <source>%n missed call(s)</source>
        <translation>
            <numerusform>%n missed call</numerusform>
            <numerusform>%n missed calls</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>Phrases</name>
    <message numerus="yes">
        <source>%n missed call(s)</source>
        <translation>
            <numerusform>%n missed call</numerusform>
            <numerusform>%n missed calls</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n unread message(s)</source>
        <translation>
            <numerusform>%n unread message</numerusform>
            <numerusform>%n unread messages</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>PushToTalkScreen</name>
    <message numerus="yes">
        <source>Talk to %n party(ies)</source>
        <translation>
            <numerusform>Talk to %n party</numerusform>
            <numerusform>Talk to %n parties</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>RecentsScreen</name>
    <message numerus="yes">
        <source>Delete all %n call(s) of this list?</source>
        <translation>
            <numerusform>Delete the %n call of this list?</numerusform>
            <numerusform>Delete all %n calls of this list?</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>StatusBar</name>
    <message numerus="yes">
        <source>%n unread missed call(s)</source>
        <translation>
            <numerusform>%n unread missed call</numerusform>
            <numerusform>%n unread missed calls</numerusform>
        </translation>
    </message>
</context>
</TS>
