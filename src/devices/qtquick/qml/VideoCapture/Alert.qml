import QtQuick

Item {
    id: alert
    property string title
    property string message
    property var actions: []
    property real entrance: 1
    readonly property real unit: Math.max(0.9, Math.min(4, Math.min(width, height) / 400))
    readonly property real letters: unit * screen.textScale
    signal chosen(int index)

    property Item firstFocus: buttons.count > 0 ? buttons.itemAt(0) : null

    opacity: entrance
    LayoutMirroring.enabled: screen.rightToLeft
    LayoutMirroring.childrenInherit: true
    Accessible.role: Accessible.AlertMessage
    Accessible.name: title + ". " + message

    // Nothing below is touched.
    Rectangle {
        anchors.fill: parent
        color: "#99000000"
        MouseArea { anchors.fill: parent; hoverEnabled: true }
    }
    Rectangle {
        anchors.centerIn: parent
        width: Math.min(parent.width - 32 * alert.unit, 360 * alert.unit)
        height: content.height + 48 * alert.unit
        radius: 18 * alert.unit
        color: "#ffffff"
        scale: 0.9 + 0.1 * alert.entrance

        Column {
            id: content
            anchors { centerIn: parent }
            width: parent.width - 36 * alert.unit
            spacing: 12 * alert.unit

            Text {
                width: parent.width
                text: alert.title
                textFormat: Text.PlainText
                color: "#1a1a1a"
                font { pixelSize: 20 * alert.letters; weight: Font.Bold }
                horizontalAlignment: Text.AlignHCenter
                wrapMode: Text.Wrap
            }
            Text {
                width: parent.width
                text: alert.message
                textFormat: Text.PlainText
                color: "#333333"
                font.pixelSize: 17 * alert.letters
                horizontalAlignment: Text.AlignHCenter
                wrapMode: Text.Wrap
                bottomPadding: 8 * alert.unit
            }
            Repeater {
                id: buttons
                model: alert.actions
                PushButton {
                    required property int index
                    required property string modelData
                    objectName: "alertButton" + index
                    width: content.width
                    height: implicitHeight
                    unit: alert.letters
                    title: modelData
                    onClicked: alert.chosen(index)
                }
            }
        }
    }
}
