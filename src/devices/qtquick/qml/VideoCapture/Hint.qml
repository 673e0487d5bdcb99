import QtQuick

// Words of the host itself, which belong to no view: below the caption, over everything else.
Item {
    id: root
    property string text: ""
    readonly property real unit: Math.max(0.9, Math.min(4, Math.min(width, height) / 400))
    readonly property real letters: unit * screen.textScale

    Accessible.role: Accessible.AlertMessage
    Accessible.name: text
    LayoutMirroring.enabled: screen.rightToLeft
    LayoutMirroring.childrenInherit: true

    Pill {
        id: pill
        label: words
        room: Math.min(root.width - 32 * root.unit, 520 * root.unit)
        unit: root.letters
        backgroundColor: "#bf4300"
        x: (root.width - width) / 2
        y: root.height * 0.12
        Label {
            id: words
            anchors.centerIn: parent
            width: parent.width - 2 * parent.padding
            text: root.text
            shrink: shrinkFor(parent.free, 0.7)
            unit: root.letters
            fontSize: 18
            font.weight: Font.DemiBold
            horizontalAlignment: Text.AlignHCenter
            Accessible.ignored: true
        }
    }
}
