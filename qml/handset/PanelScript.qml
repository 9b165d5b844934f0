// Plays a script: a file of what happens, one line each.
import QtQuick
import QtQuick.Layouts
import ZynPhone

PanelSection {
    id: panel

    title: qsTr("Script")

    // Dropped files are URLs, typed ones mostly paths.
    function run(file) {
        DeskNetwork.runScript(/^[a-z]+:\/\//.test(file) ? file : "file://" + encodeURI(file))
    }

    PhoneField {
        id: file

        objectName: "panelScript"
        Layout.fillWidth: true
        maximumLength: 4096
        placeholderText: qsTr("File: type its path, or drop it here")
        onAccepted: panel.run(text)

        DropArea {
            anchors.fill: parent
            keys: ["text/uri-list"]
            onDropped: drop => file.text = drop.urls[0].toString()
        }
    }
    RowLayout {
        spacing: Theme.gap

        PhoneButton {
            objectName: "panelPlay"
            Layout.fillWidth: true
            tone: PhoneButton.Soft
            font.pixelSize: Theme.small
            symbol: DeskNetwork.scriptRunning ? "stop" : "play"
            symbolSize: Theme.base * 1.4
            text: DeskNetwork.scriptRunning ? qsTr("Stop") : qsTr("Play")
            enabled: DeskNetwork.scriptRunning || file.text !== ""
            onClicked: {
                if (DeskNetwork.scriptRunning)
                    DeskNetwork.stopScript()
                else
                    panel.run(file.text)
            }
        }
        PhoneButton {
            objectName: "panelSnapshot"
            Layout.fillWidth: true
            tone: PhoneButton.Soft
            font.pixelSize: Theme.small
            text: qsTr("Tell all again")
            onClicked: DeskNetwork.snapshot()
        }
    }
}
