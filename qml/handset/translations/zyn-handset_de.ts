<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE">
<context>
    <name>ActivityScreen</name>
    <message>
        <source>Call %1</source>
        <translation>%1 anrufen</translation>
    </message>
    <message>
        <source>What happened with %1</source>
        <translation>Was mit %1 war</translation>
    </message>
    <message>
        <source>Message</source>
        <translation>Nachricht</translation>
    </message>
    <message>
        <source>Nothing yet</source>
        <translation>Noch nichts</translation>
    </message>
    <message>
        <source>The log cannot be shown</source>
        <translation>Das Protokoll kann nicht gezeigt werden</translation>
    </message>
    <message>
        <source>Calls and messages with this favourite appear here.</source>
        <translation>Hier erscheinen Anrufe und Nachrichten dieses Favoriten.</translation>
    </message>
    <message>
        <source>Try again</source>
        <translation>Noch einmal</translation>
    </message>
</context>
<context>
    <name>Badge</name>
    <message>
        <source>99+</source>
        <translation>99+</translation>
    </message>
</context>
<context>
    <name>BatterySymbol</name>
    <message>
        <source>Battery: unknown</source>
        <translation>Akku: unbekannt</translation>
    </message>
    <message>
        <source>Battery: %1 %, charging</source>
        <translation>Akku: %1 %, lädt</translation>
    </message>
    <message>
        <source>Battery: %1 %</source>
        <translation>Akku: %1 %</translation>
    </message>
    <message>
        <source>%1 %</source>
        <translation>%1 %</translation>
    </message>
</context>
<context>
    <name>CallRow</name>
    <message>
        <source>Answer %1</source>
        <translation>%1 annehmen</translation>
    </message>
    <message>
        <source>Reject %1</source>
        <translation>%1 abweisen</translation>
    </message>
    <message>
        <source>End the call with %1</source>
        <translation>Gespräch mit %1 beenden</translation>
    </message>
</context>
<context>
    <name>CallScreen</name>
    <message>
        <source>Call</source>
        <translation>Anrufen</translation>
    </message>
    <message>
        <source>Leave the call aside</source>
        <translation>Gespräch zur Seite legen</translation>
    </message>
    <message>
        <source>Reject</source>
        <translation>Abweisen</translation>
    </message>
    <message>
        <source>Hang up</source>
        <translation>Auflegen</translation>
    </message>
    <message>
        <source>Answer</source>
        <translation>Annehmen</translation>
    </message>
</context>
<context>
    <name>CategoryTabs</name>
    <message>
        <source>All</source>
        <translation>Alle</translation>
    </message>
    <message>
        <source>Answered</source>
        <translation>Angenommen</translation>
    </message>
    <message>
        <source>Missed</source>
        <translation>Verpasst</translation>
    </message>
    <message>
        <source>Dialed</source>
        <translation>Gewählt</translation>
    </message>
    <message>
        <source>Lists of calls</source>
        <translation>Anruflisten</translation>
    </message>
</context>
<context>
    <name>ConfirmBar</name>
    <message>
        <source>Keep</source>
        <translation>Behalten</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
</context>
<context>
    <name>DialerScreen</name>
    <message>
        <source>Keypad</source>
        <translation>Tasten</translation>
    </message>
    <message>
        <source>Key %1 has no number yet. Type the number, then hold the key.</source>
        <translation>Taste %1 hat noch keine Nummer. Geben Sie die Nummer ein, und halten Sie dann die Taste.</translation>
    </message>
    <message>
        <source>Number</source>
        <translation>Nummer</translation>
    </message>
    <message>
        <source>Key %1 calls %2. Have it call %3?</source>
        <translation>Taste %1 wählt %2. Soll sie %3 wählen?</translation>
    </message>
    <message>
        <source>Have key %1 call %2?</source>
        <translation>Soll Taste %1 die Nummer %2 wählen?</translation>
    </message>
    <message>
        <source>Store</source>
        <translation>Speichern</translation>
    </message>
    <message>
        <source>Hold %1 to call %2.</source>
        <translation>Halten Sie %1, um %2 anzurufen.</translation>
    </message>
    <message>
        <source>Make it a favourite</source>
        <translation>Zum Favoriten machen</translation>
    </message>
    <message>
        <source>Fetch the last number dialed</source>
        <translation>Zuletzt gewählte Nummer holen</translation>
    </message>
    <message>
        <source>Call</source>
        <translation>Anrufen</translation>
    </message>
    <message>
        <source>Take back the last digit</source>
        <translation>Letzte Ziffer zurücknehmen</translation>
    </message>
    <message>
        <source>Hold to clear the number.</source>
        <translation>Halten löscht die Nummer.</translation>
    </message>
</context>
<context>
    <name>Dialing</name>
    <message>
        <source>Without a SIM card, only emergency numbers can be called.</source>
        <translation>Ohne SIM-Karte können nur Notrufnummern gewählt werden.</translation>
    </message>
</context>
<context>
    <name>FavouriteRow</name>
    <message>
        <source>Empty place</source>
        <translation>Freier Platz</translation>
    </message>
    <message>
        <source>Add a number on place %1</source>
        <translation>Nummer auf Platz %1 hinzufügen</translation>
    </message>
    <message>
        <source>Remove %1? What is logged of it goes, too.</source>
        <translation>%1 entfernen? Auch das Protokoll dazu wird gelöscht.</translation>
    </message>
    <message>
        <source>Remove</source>
        <translation>Entfernen</translation>
    </message>
    <message>
        <source>Call %1</source>
        <translation>%1 anrufen</translation>
    </message>
    <message>
        <source>What happened with %1</source>
        <translation>Was mit %1 war</translation>
    </message>
    <message>
        <source>Replace %1</source>
        <translation>%1 ersetzen</translation>
    </message>
    <message>
        <source>Remove %1</source>
        <translation>%1 entfernen</translation>
    </message>
</context>
<context>
    <name>FavouriteTile</name>
    <message>
        <source>Add</source>
        <translation>Neu</translation>
    </message>
    <message>
        <source>Favourite %1</source>
        <translation>Favorit %1</translation>
    </message>
    <message>
        <source>Add a favourite</source>
        <translation>Favorit hinzufügen</translation>
    </message>
    <message>
        <source>hold to see what happened with this number</source>
        <translation>halten zeigt, was mit dieser Nummer war</translation>
    </message>
</context>
<context>
    <name>FavouritesScreen</name>
    <message>
        <source>Favourites</source>
        <translation>Favoriten</translation>
    </message>
    <message>
        <source>All five places are taken. Replace one of them by %1.</source>
        <translation>Alle fünf Plätze sind belegt. Ersetzen Sie einen davon durch %1.</translation>
    </message>
    <message>
        <source>The favourites cannot be shown</source>
        <translation>Die Favoriten können nicht gezeigt werden</translation>
    </message>
    <message>
        <source>Try again</source>
        <translation>Noch einmal</translation>
    </message>
</context>
<context>
    <name>HandsetFiles</name>
    <message>
        <source>The settings cannot be read: %1</source>
        <translation>Die Einstellungen können nicht gelesen werden: %1</translation>
    </message>
    <message>
        <source>The favourites cannot be read: %1</source>
        <translation>Die Favoriten können nicht gelesen werden: %1</translation>
    </message>
</context>
<context>
    <name>IdleScreen</name>
    <message>
        <source>Home</source>
        <translation>Start</translation>
    </message>
    <message>
        <source>Settings</source>
        <translation>Einstellungen</translation>
    </message>
    <message>
        <source>Lock the keypad</source>
        <translation>Tasten sperren</translation>
    </message>
</context>
<context>
    <name>KeypadKey</name>
    <message>
        <source>Star</source>
        <translation>Stern</translation>
    </message>
    <message>
        <source>Hash</source>
        <translation>Raute</translation>
    </message>
</context>
<context>
    <name>LockScreen</name>
    <message>
        <source>Locked</source>
        <translation>Gesperrt</translation>
    </message>
    <message numerus="yes">
        <source>%n missed call(s)</source>
        <translation>
            <numerusform>%n verpasster Anruf</numerusform>
            <numerusform>%n verpasste Anrufe</numerusform>
        </translation>
    </message>
    <message>
        <source>Only emergency numbers can be called.</source>
        <translation>Nur Notrufnummern können gewählt werden.</translation>
    </message>
    <message>
        <source>Emergency</source>
        <translation>Notruf</translation>
    </message>
    <message>
        <source>Emergency call</source>
        <translation>Notruf</translation>
    </message>
    <message>
        <source>Back</source>
        <translation>Zurück</translation>
    </message>
    <message>
        <source>Clear</source>
        <translation>Löschen</translation>
    </message>
    <message>
        <source>Call</source>
        <translation>Anrufen</translation>
    </message>
    <message>
        <source>Unlock</source>
        <translation>Entsperren</translation>
    </message>
</context>
<context>
    <name>Main</name>
    <message>
        <source>Phone</source>
        <translation>Telefon</translation>
    </message>
</context>
<context>
    <name>MissedCard</name>
    <message numerus="yes">
        <source>%n missed call(s)</source>
        <translation>
            <numerusform>%n verpasster Anruf</numerusform>
            <numerusform>%n verpasste Anrufe</numerusform>
        </translation>
    </message>
    <message>
        <source>%1 – %2</source>
        <translation>%1 – %2</translation>
    </message>
</context>
<context>
    <name>NavigationBar</name>
    <message>
        <source>Home</source>
        <translation>Start</translation>
    </message>
    <message>
        <source>Recents</source>
        <translation>Anrufe</translation>
    </message>
    <message>
        <source>Keypad</source>
        <translation>Tasten</translation>
    </message>
    <message>
        <source>Favourites</source>
        <translation>Favoriten</translation>
    </message>
    <message>
        <source>Talk</source>
        <translation>Funk</translation>
    </message>
    <message>
        <source>Screens</source>
        <translation>Ansichten</translation>
    </message>
</context>
<context>
    <name>NetworkPanel</name>
    <message>
        <source>Network</source>
        <translation>Netz</translation>
    </message>
    <message>
        <source>The network</source>
        <translation>Das Netz</translation>
    </message>
    <message>
        <source>Close the network&apos;s panel</source>
        <translation>Bedienfeld des Netzes schließen</translation>
    </message>
    <message>
        <source>Nothing to play</source>
        <translation>Nichts zu spielen</translation>
    </message>
    <message>
        <source>The phone server does not run, or a modem makes its calls. Start zyn-phoned without --modem to play the network here.</source>
        <translation>Der Telefondienst läuft nicht, oder ein Modem führt seine Gespräche. Starten Sie zyn-phoned ohne --modem, um hier das Netz zu spielen.</translation>
    </message>
</context>
<context>
    <name>NumberEditor</name>
    <message>
        <source>Number</source>
        <translation>Nummer</translation>
    </message>
    <message>
        <source>Name, if you like</source>
        <translation>Name, wenn Sie möchten</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>Store</source>
        <translation>Speichern</translation>
    </message>
</context>
<context>
    <name>PanelCalls</name>
    <message>
        <source>The other party</source>
        <translation>Die andere Seite</translation>
    </message>
    <message>
        <source>Number of the caller</source>
        <translation>Nummer des Anrufers</translation>
    </message>
    <message>
        <source>Name, if the network tells it</source>
        <translation>Name, falls das Netz ihn nennt</translation>
    </message>
    <message>
        <source>Call in</source>
        <translation>Anrufen</translation>
    </message>
    <message>
        <source>Give up</source>
        <translation>Aufgeben</translation>
    </message>
    <message>
        <source>Answer</source>
        <translation>Annehmen</translation>
    </message>
    <message>
        <source>Hang up</source>
        <translation>Auflegen</translation>
    </message>
    <message>
        <source>Not reached</source>
        <translation>Nicht erreicht</translation>
    </message>
</context>
<context>
    <name>PanelChoices</name>
    <message>
        <source>%1: %2</source>
        <translation>%1: %2</translation>
    </message>
</context>
<context>
    <name>PanelScript</name>
    <message>
        <source>Script</source>
        <translation>Skript</translation>
    </message>
    <message>
        <source>File: type its path, or drop it here</source>
        <translation>Datei: Pfad eingeben oder hier ablegen</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>Anhalten</translation>
    </message>
    <message>
        <source>Play</source>
        <translation>Abspielen</translation>
    </message>
    <message>
        <source>Tell all again</source>
        <translation>Alles neu melden</translation>
    </message>
</context>
<context>
    <name>PanelStates</name>
    <message>
        <source>Network</source>
        <translation>Netz</translation>
    </message>
    <message>
        <source>Signal: %1 of 5</source>
        <translation>Empfang: %1 von 5</translation>
    </message>
    <message>
        <source>Name of the operator</source>
        <translation>Name des Anbieters</translation>
    </message>
    <message>
        <source>Registered</source>
        <translation>Eingebucht</translation>
    </message>
    <message>
        <source>Searching</source>
        <translation>Sucht</translation>
    </message>
    <message>
        <source>Denied</source>
        <translation>Verweigert</translation>
    </message>
    <message>
        <source>None</source>
        <translation>Keine</translation>
    </message>
    <message>
        <source>Roaming</source>
        <translation>Roaming</translation>
    </message>
    <message>
        <source>At home</source>
        <translation>Zu Hause</translation>
    </message>
    <message>
        <source>Abroad</source>
        <translation>Im Ausland</translation>
    </message>
    <message>
        <source>Battery</source>
        <translation>Akku</translation>
    </message>
    <message>
        <source>Charge: %1 %</source>
        <translation>Ladung: %1 %</translation>
    </message>
    <message>
        <source>Warning</source>
        <translation>Warnung</translation>
    </message>
    <message>
        <source>Low</source>
        <translation>Schwach</translation>
    </message>
    <message>
        <source>Critical</source>
        <translation>Kritisch</translation>
    </message>
    <message>
        <source>Charger</source>
        <translation>Ladegerät</translation>
    </message>
    <message>
        <source>Charging</source>
        <translation>Lädt</translation>
    </message>
    <message>
        <source>Full</source>
        <translation>Voll</translation>
    </message>
    <message>
        <source>SIM card</source>
        <translation>SIM-Karte</translation>
    </message>
    <message>
        <source>Card</source>
        <translation>Karte</translation>
    </message>
    <message>
        <source>Ready</source>
        <translation>Bereit</translation>
    </message>
    <message>
        <source>Locked</source>
        <translation>Gesperrt</translation>
    </message>
    <message>
        <source>Asks for</source>
        <translation>Verlangt</translation>
    </message>
    <message>
        <source>Nothing</source>
        <translation>Nichts</translation>
    </message>
    <message>
        <source>PIN</source>
        <translation>PIN</translation>
    </message>
    <message>
        <source>PUK</source>
        <translation>PUK</translation>
    </message>
</context>
<context>
    <name>Phone</name>
    <message>
        <source>The call to %1 was not put through.</source>
        <translation>Der Anruf bei %1 kam nicht zustande.</translation>
    </message>
    <message>
        <source>Back to the call with %1</source>
        <translation>Zurück zum Gespräch mit %1</translation>
    </message>
</context>
<context>
    <name>PhoneHeader</name>
    <message>
        <source>Play the network</source>
        <translation>Netz spielen</translation>
    </message>
</context>
<context>
    <name>PhoneScreen</name>
    <message>
        <source>Back</source>
        <translation>Zurück</translation>
    </message>
</context>
<context>
    <name>Phrases</name>
    <message>
        <source>Unknown number</source>
        <translation>Unbekannte Nummer</translation>
    </message>
    <message>
        <source>Yesterday, %1</source>
        <translation>Gestern, %1</translation>
    </message>
    <message>
        <source>%1, %2</source>
        <translation>%1, %2</translation>
    </message>
    <message>
        <source>Dialing</source>
        <translation>Wählt</translation>
    </message>
    <message>
        <source>Rings there</source>
        <translation>Klingelt dort</translation>
    </message>
    <message>
        <source>Incoming call</source>
        <translation>Eingehender Anruf</translation>
    </message>
    <message>
        <source>Call waiting</source>
        <translation>Anruf wartet</translation>
    </message>
    <message>
        <source>Connected</source>
        <translation>Verbunden</translation>
    </message>
    <message>
        <source>On hold</source>
        <translation>Gehalten</translation>
    </message>
    <message>
        <source>Ended</source>
        <translation>Beendet</translation>
    </message>
    <message>
        <source>Answered</source>
        <translation>Angenommen</translation>
    </message>
    <message>
        <source>Missed</source>
        <translation>Verpasst</translation>
    </message>
    <message>
        <source>Dialed</source>
        <translation>Gewählt</translation>
    </message>
    <message>
        <source>No SIM card</source>
        <translation>Keine SIM-Karte</translation>
    </message>
    <message>
        <source>SIM card: PIN needed</source>
        <translation>SIM-Karte: PIN nötig</translation>
    </message>
    <message>
        <source>SIM card: PUK needed</source>
        <translation>SIM-Karte: PUK nötig</translation>
    </message>
    <message>
        <source>SIM card locked</source>
        <translation>SIM-Karte gesperrt</translation>
    </message>
    <message>
        <source>No network</source>
        <translation>Kein Netz</translation>
    </message>
    <message>
        <source>Searching</source>
        <translation>Sucht</translation>
    </message>
    <message>
        <source>Network denied</source>
        <translation>Netz verweigert</translation>
    </message>
    <message numerus="yes">
        <source>%n missed call(s)</source>
        <translation>
            <numerusform>%n verpasster Anruf</numerusform>
            <numerusform>%n verpasste Anrufe</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n unread message(s)</source>
        <translation>
            <numerusform>%n ungelesene Nachricht</numerusform>
            <numerusform>%n ungelesene Nachrichten</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>PushToTalkScreen</name>
    <message>
        <source>Push-to-talk</source>
        <translation>Sprechfunk</translation>
    </message>
    <message>
        <source>Choose whom to talk to. Several are called together.</source>
        <translation>Wählen Sie, mit wem Sie sprechen. Mehrere werden zusammen gerufen.</translation>
    </message>
    <message>
        <source>Another number</source>
        <translation>Andere Nummer</translation>
    </message>
    <message>
        <source>Add the number</source>
        <translation>Nummer hinzufügen</translation>
    </message>
    <message>
        <source>Drop the call</source>
        <translation>Gespräch beenden</translation>
    </message>
    <message>
        <source>Talk</source>
        <translation>Funk</translation>
    </message>
    <message>
        <source>Press to drop the call</source>
        <translation>Drücken beendet das Gespräch</translation>
    </message>
    <message numerus="yes">
        <source>Talk to %n party(ies)</source>
        <translation>
            <numerusform>Mit %n Teilnehmer sprechen</numerusform>
            <numerusform>Mit %n Teilnehmern sprechen</numerusform>
        </translation>
    </message>
    <message>
        <source>Nobody is chosen</source>
        <translation>Niemand ist gewählt</translation>
    </message>
</context>
<context>
    <name>RecentDetails</name>
    <message>
        <source>Number</source>
        <translation>Nummer</translation>
    </message>
    <message>
        <source>Kind</source>
        <translation>Art</translation>
    </message>
    <message>
        <source>%1, push-to-talk</source>
        <translation>%1, Sprechfunk</translation>
    </message>
    <message>
        <source>Time</source>
        <translation>Zeit</translation>
    </message>
    <message>
        <source>%1, %2</source>
        <translation>%1, %2</translation>
    </message>
    <message>
        <source>Duration</source>
        <translation>Dauer</translation>
    </message>
    <message>
        <source>Favourite</source>
        <translation>Favorit</translation>
    </message>
    <message>
        <source>Edit</source>
        <translation>Ändern</translation>
    </message>
    <message>
        <source>Edit the number before calling it</source>
        <translation>Nummer vor dem Anrufen bearbeiten</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>Löschen</translation>
    </message>
    <message>
        <source>Delete this call from the list</source>
        <translation>Diesen Anruf aus der Liste löschen</translation>
    </message>
</context>
<context>
    <name>RecentRow</name>
    <message>
        <source>unread</source>
        <translation>ungelesen</translation>
    </message>
    <message>
        <source>Call %1</source>
        <translation>%1 anrufen</translation>
    </message>
</context>
<context>
    <name>RecentsScreen</name>
    <message>
        <source>Choose a number</source>
        <translation>Nummer wählen</translation>
    </message>
    <message>
        <source>Recent calls</source>
        <translation>Letzte Anrufe</translation>
    </message>
    <message>
        <source>Delete all calls of this list</source>
        <translation>Alle Anrufe dieser Liste löschen</translation>
    </message>
    <message numerus="yes">
        <source>Delete all %n call(s) of this list?</source>
        <translation>
            <numerusform>%n Anruf dieser Liste löschen?</numerusform>
            <numerusform>Alle %n Anrufe dieser Liste löschen?</numerusform>
        </translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>Löschen</translation>
    </message>
    <message>
        <source>No calls here</source>
        <translation>Keine Anrufe</translation>
    </message>
    <message>
        <source>The calls cannot be shown</source>
        <translation>Die Anrufe können nicht gezeigt werden</translation>
    </message>
    <message>
        <source>Calls appear here once they are over.</source>
        <translation>Hier erscheinen Anrufe, sobald sie beendet sind.</translation>
    </message>
    <message>
        <source>Type a number</source>
        <translation>Nummer eingeben</translation>
    </message>
    <message>
        <source>Try again</source>
        <translation>Noch einmal</translation>
    </message>
</context>
<context>
    <name>ServiceBar</name>
    <message>
        <source>Start again</source>
        <translation>Neu starten</translation>
    </message>
</context>
<context>
    <name>SettingsScreen</name>
    <message>
        <source>Settings</source>
        <translation>Einstellungen</translation>
    </message>
    <message>
        <source>Answered calls</source>
        <translation>Angenommene Anrufe</translation>
    </message>
    <message>
        <source>Missed calls</source>
        <translation>Verpasste Anrufe</translation>
    </message>
    <message>
        <source>Dialed calls</source>
        <translation>Gewählte Nummern</translation>
    </message>
    <message>
        <source>All calls</source>
        <translation>Alle Anrufe</translation>
    </message>
    <message>
        <source>Entries of a favourite</source>
        <translation>Einträge eines Favoriten</translation>
    </message>
    <message>
        <source>System</source>
        <translation>System</translation>
    </message>
    <message>
        <source>Light</source>
        <translation>Hell</translation>
    </message>
    <message>
        <source>Dark</source>
        <translation>Dunkel</translation>
    </message>
    <message>
        <source>Recent calls</source>
        <translation>Letzte Anrufe</translation>
    </message>
    <message>
        <source>Two lines for each call</source>
        <translation>Zwei Zeilen je Anruf</translation>
    </message>
    <message>
        <source>Put the prefix before numbers that are called</source>
        <translation>Gewählten Nummern die Vorwahl voranstellen</translation>
    </message>
    <message>
        <source>How many are kept</source>
        <translation>Wie viele behalten werden</translation>
    </message>
    <message>
        <source>–</source>
        <translation>–</translation>
    </message>
    <message>
        <source>Speed dial: hold the key to call</source>
        <translation>Kurzwahl: Taste halten, um anzurufen</translation>
    </message>
    <message>
        <source>Look</source>
        <translation>Aussehen</translation>
    </message>
</context>
<context>
    <name>SignalBars</name>
    <message>
        <source>Signal: %1 of %2 bars</source>
        <translation>Empfang: %1 von %2 Balken</translation>
    </message>
    <message>
        <source>No signal</source>
        <translation>Kein Empfang</translation>
    </message>
</context>
<context>
    <name>SpeedDialRow</name>
    <message>
        <source>Key %1</source>
        <translation>Taste %1</translation>
    </message>
    <message>
        <source>Empty</source>
        <translation>Leer</translation>
    </message>
    <message>
        <source>Change the number of key %1</source>
        <translation>Nummer von Taste %1 ändern</translation>
    </message>
    <message>
        <source>Give key %1 a number</source>
        <translation>Taste %1 eine Nummer geben</translation>
    </message>
    <message>
        <source>Clear key %1</source>
        <translation>Taste %1 leeren</translation>
    </message>
    <message>
        <source>Number for key %1</source>
        <translation>Nummer für Taste %1</translation>
    </message>
</context>
<context>
    <name>StatusBar</name>
    <message>
        <source>No service</source>
        <translation>Kein Dienst</translation>
    </message>
    <message>
        <source>R</source>
        <comment>roaming, on the status bar</comment>
        <translation>R</translation>
    </message>
    <message>
        <source>Roaming</source>
        <translation>Roaming</translation>
    </message>
    <message numerus="yes">
        <source>%n unread missed call(s)</source>
        <translation>
            <numerusform>%n ungesehener verpasster Anruf</numerusform>
            <numerusform>%n ungesehene verpasste Anrufe</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>zyn::qml::ActivityLogModel</name>
    <message>
        <source>The log of this favourite cannot be read whole</source>
        <translation>Das Protokoll dieses Favoriten ist nicht ganz lesbar</translation>
    </message>
</context>
<context>
    <name>zyn::qml::CallLogReader</name>
    <message>
        <source>The recent-call service does not answer. Start zyn-recentcalld, or look at what it has logged.</source>
        <translation>Der Dienst für letzte Anrufe antwortet nicht. Starten Sie zyn-recentcalld, oder sehen Sie nach, was er gemeldet hat.</translation>
    </message>
</context>
<context>
    <name>zyn::qml::DeskNetwork</name>
    <message>
        <source>%1 is not a readable file of at most 1 MiB</source>
        <translation>%1 ist keine lesbare Datei von höchstens 1 MiB</translation>
    </message>
    <message>
        <source>The state of the handset cannot be written</source>
        <translation>Der Zustand des Telefons kann nicht geschrieben werden</translation>
    </message>
</context>
<context>
    <name>zyn::qml::EmergencyNumber</name>
    <message>
        <source>Emergency number</source>
        <translation>Notrufnummer</translation>
    </message>
    <message>
        <source>May become an emergency number or a code that is allowed now</source>
        <translation>Kann eine Notrufnummer oder ein erlaubter Code werden</translation>
    </message>
    <message>
        <source>No emergency number begins like this</source>
        <translation>So beginnt keine Notrufnummer</translation>
    </message>
</context>
<context>
    <name>zyn::qml::FavouritesModel</name>
    <message>
        <source>There is no favourite in this place</source>
        <translation>An diesem Platz ist kein Favorit</translation>
    </message>
    <message>
        <source>This is not a number of a call</source>
        <translation>Das ist keine Nummer eines Anrufs</translation>
    </message>
    <message>
        <source>%1 is a favourite already</source>
        <translation>%1 ist schon ein Favorit</translation>
    </message>
    <message>
        <source>All places are taken</source>
        <translation>Alle Plätze sind belegt</translation>
    </message>
    <message>
        <source>The favourites have not changed: start zyn-favourites, to which they belong, or see what it says</source>
        <translation>Die Favoriten haben sich nicht geändert: Starten Sie zyn-favourites, dem sie gehören, oder sehen Sie nach, was es meldet</translation>
    </message>
</context>
<context>
    <name>zyn::qml::PhoneCalls</name>
    <message>
        <source>A number has 1 to %1 digits or signs</source>
        <translation>Eine Nummer hat 1 bis %1 Ziffern oder Zeichen</translation>
    </message>
</context>
<context>
    <name>zyn::qml::PhoneControlClient</name>
    <message>
        <source>The phone server does not answer</source>
        <translation>Der Telefondienst antwortet nicht</translation>
    </message>
    <message>
        <source>The phone server has ended</source>
        <translation>Der Telefondienst hat sich beendet</translation>
    </message>
    <message>
        <source>The phone server gave an answer that no phone server gives</source>
        <translation>Der Telefondienst gab eine Antwort, die kein Telefondienst gibt</translation>
    </message>
    <message>
        <source>A text holds a character that cannot be sent</source>
        <translation>Ein Text enthält ein Zeichen, das nicht gesendet werden kann</translation>
    </message>
    <message>
        <source>That is more than the phone server takes at once</source>
        <translation>Das ist mehr, als der Telefondienst auf einmal annimmt</translation>
    </message>
    <message>
        <source>The phone server does not run</source>
        <translation>Der Telefondienst läuft nicht</translation>
    </message>
    <message>
        <source>Another user has taken the phone server&apos;s place</source>
        <translation>Ein anderer Benutzer hat den Platz des Telefondienstes</translation>
    </message>
</context>
<context>
    <name>zyn::qml::PushToTalk</name>
    <message>
        <source>A push-to-talk call has 1 to %1 parties, each with a number</source>
        <translation>Ein Sprechfunkruf hat 1 bis %1 Teilnehmer, jeden mit einer Nummer</translation>
    </message>
</context>
<context>
    <name>zyn::qml::RecentCallSettings</name>
    <message>
        <source>The settings cannot be stored: %1</source>
        <translation>Die Einstellungen können nicht gespeichert werden: %1</translation>
    </message>
</context>
<context>
    <name>zyn::qml::SpeedDialModel</name>
    <message>
        <source>Speed dial has the keys 1 to 9, and not %1</source>
        <translation>Kurzwahl hat die Tasten 1 bis 9, nicht %1</translation>
    </message>
    <message>
        <source>The number of key %1 cannot be stored in the settings</source>
        <translation>Die Nummer von Taste %1 kann nicht in den Einstellungen gespeichert werden</translation>
    </message>
</context>
<context>
    <name>zyn::window::Services</name>
    <message>
        <source>the recent-call service</source>
        <translation>der Dienst für letzte Anrufe</translation>
    </message>
    <message>
        <source>the owner of the favourites</source>
        <translation>der Besitzer der Favoriten</translation>
    </message>
    <message>
        <source>the phone server</source>
        <translation>der Telefondienst</translation>
    </message>
    <message>
        <source>Not running: %1.</source>
        <translation>Nicht in Betrieb: %1.</translation>
    </message>
</context>
</TS>
