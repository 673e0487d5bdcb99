import QtQuick

View {
    id: root
    property real entrance: 1
    readonly property bool landscape: width > height
    readonly property real unit: Math.max(0.9, Math.min(4, Math.min(width, height) / 400))
    readonly property real letters: unit * screen.textScale
    readonly property real margin: 24 * unit
    readonly property real column: Math.min(width - 2 * margin, (landscape ? 680 : 440) * unit)
    readonly property real buttonWidth: landscape ? (column - margin) / 2 : column
    readonly property real foot: height * (landscape ? 0.92 : 0.91)
    // For picture and words, above the buttons.
    readonly property real room: (landscape ? cancelButton.y : retryButton.y) - margin
    property Item firstFocus: retryButton

    backgroundColor: "#10233a"
    transform: Translate { y: (1 - root.entrance) * root.height }
    LayoutMirroring.enabled: screen.rightToLeft
    LayoutMirroring.childrenInherit: true

    OutletCollection {
        id: buttons
        members: [retryButton, cancelButton]
    }
    Rectangle {
        anchors.fill: parent
        color: root.backgroundColor
        MouseArea { anchors.fill: parent; hoverEnabled: true }
    }
    Picture {
        id: imageView
        anchors.horizontalCenter: parent.horizontalCenter
        y: (root.room - height - label.height) / 2
        height: Math.max(0, Math.min(180 * root.unit, root.height * 0.3, root.room - label.height - 2 * root.margin))
        width: height
        imageSource: "image://views/retry_picture"
        tintColor: "#ffffff"
        tinted: true
        Accessible.ignored: true
    }
    Label {
        id: label
        anchors.horizontalCenter: parent.horizontalCenter
        y: imageView.y + imageView.height + root.margin
        width: balancedWidth(root.column)
        unit: root.letters
        fontSize: 22
        horizontalAlignment: Text.AlignHCenter
        announced: true
        Accessible.role: Accessible.AlertMessage
    }
    PushButton {
        id: retryButton
        action: "retry"
        x: (root.width - root.column) / 2 + (root.landscape && screen.rightToLeft ? root.buttonWidth + root.margin : 0)
        y: root.landscape ? cancelButton.y : cancelButton.y - height - 16 * root.unit
        width: root.buttonWidth
        height: implicitHeight
        unit: root.letters
        backgroundColor: "#ffffff"
        titleColor: "#10233a"
        KeyNavigation.down: cancelButton
    }
    PushButton {
        id: cancelButton
        action: "cancel"
        x: (root.width - root.column) / 2 + (root.landscape && !screen.rightToLeft ? root.buttonWidth + root.margin : 0)
        y: root.foot - height
        width: root.buttonWidth
        height: implicitHeight
        unit: root.letters
        backgroundColor: "#2c4565"
        KeyNavigation.up: retryButton
    }
}
