import QtQuick

// What the host measured, for who looks for faults: above the foot, where the module's own figures are not.
Item {
    id: root
    property string text: ""
    readonly property real unit: Math.max(0.9, Math.min(4, Math.min(width, height) / 400))

    Accessible.ignored: true

    DebugPanel {
        x: 8 * root.unit
        y: root.height * 0.5
        Label {
            text: root.text
            textFormat: Text.PlainText
            fontSize: 11
            unit: root.unit
            Accessible.ignored: true
        }
    }
}
