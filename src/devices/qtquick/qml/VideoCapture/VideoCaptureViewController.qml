import QtQuick
import Corvana.Devices

// Oval and card frame lie so that the face stays in sight above or beside the card: the camera
// watches it to the end.
View {
    id: root
    property Item preview: cameraPreview
    property Item outlines: faceOutlines
    property real entrance: 1
    readonly property bool landscape: width > height
    readonly property real unit: Math.max(0.9, Math.min(4, Math.min(width, height) / 400))
    readonly property real letters: unit * screen.textScale
    readonly property real gap: 12 * unit
    readonly property real promptRoom: Math.min(width - 32 * unit, 520 * unit)

    backgroundColor: "black"
    opacity: alpha * entrance
    focus: true
    LayoutMirroring.enabled: screen.rightToLeft
    LayoutMirroring.childrenInherit: true
    Keys.onEscapePressed: closeButton.clicked()

    // Where a prompt lies: over, on or under what it speaks of.
    function promptY(pill, target, above, below) {
        if (above.wins) return Math.max(target.y - pill.height - gap, overlayTopView.height)
        if (below.wins) return Math.min(target.y + target.height + gap, height - pill.height - gap)
        return target.y + (target.height - pill.height) / 2
    }

    Constraint { id: selfieLabelAboveConstraint }
    Constraint { id: selfieLabelCenterConstraint }
    Constraint { id: selfieLabelBelowConstraint }
    Constraint { id: idLabelAboveConstraint }
    Constraint { id: idLabelCenterConstraint }
    Constraint { id: idLabelBelowConstraint }
    Constraint { id: idFrameImageViewWidthConstraint; priority: 1000 }
    OutletCollection {
        id: selfieOverlayBezels
        members: [topLeftBezel, topRightBezel, bottomLeftBezel, bottomRightBezel]
    }

    Preview {
        id: cameraPreview
        anchors.fill: parent
    }
    Outlines {
        id: faceOutlines
    }

    View {
        id: selfieOverlayView
        anchors.fill: parent

        Picture {
            id: selfieOverlayImageBackground
            anchors.fill: parent
            Shade {
                anchors.fill: parent
                color: selfieOverlayImageBackground.tintColor
                opening: Qt.rect(selfieOverlayImageView.x, selfieOverlayImageView.y,
                                 selfieOverlayImageView.width, selfieOverlayImageView.height)
            }
        }
        Picture {
            id: selfieOverlayBottomImageView
            anchors { left: parent.left; right: parent.right; bottom: parent.bottom }
            height: parent.height * 0.2
            Rectangle {
                anchors.fill: parent
                gradient: Gradient {
                    GradientStop { position: 0; color: "transparent" }
                    GradientStop { position: 1; color: "#80000000" }
                }
            }
        }
        Picture {
            id: selfieOverlayImageView
            readonly property real footroom: 48 * root.letters + 2.5 * root.gap
            height: root.landscape ? Math.min(root.height * 0.64, root.height - overlayTopView.height - footroom)
                                   : Math.min(root.height * 0.5, root.width * 0.667 * 4 / 3)
            width: height * 0.75
            x: (root.width - width) / 2
            y: root.landscape ? overlayTopView.height + root.gap / 2
                              : Math.max(root.height * 0.406 - height / 2, overlayTopView.height)
            Oval {
                anchors.fill: parent
                color: selfieOverlayImageView.tintColor
                lineWidth: 5 * root.unit
            }
        }
        Bezel { id: topLeftBezel; around: selfieOverlayImageView; unit: root.unit }
        Bezel { id: topRightBezel; around: selfieOverlayImageView; unit: root.unit; atRight: true }
        Bezel { id: bottomLeftBezel; around: selfieOverlayImageView; unit: root.unit; atBottom: true }
        Bezel { id: bottomRightBezel; around: selfieOverlayImageView; unit: root.unit; atRight: true; atBottom: true }
        Pill {
            id: selfieOverlayLabelView
            hidden: true
            label: selfieOverlayLabel
            room: root.promptRoom
            unit: root.letters
            x: (root.width - width) / 2
            y: root.promptY(selfieOverlayLabelView, selfieOverlayImageView, selfieLabelAboveConstraint, selfieLabelBelowConstraint)
            Label {
                id: selfieOverlayLabel
                anchors.centerIn: parent
                width: parent.width - 2 * parent.padding
                shrink: shrinkFor(parent.free, root.landscape ? 0.7 : 0.8)
                unit: root.letters
                fontSize: 20
                font.weight: Font.DemiBold
                horizontalAlignment: Text.AlignHCenter
                announced: true
                Accessible.role: Accessible.AlertMessage
            }
        }
        View {
            id: selfieDebugStackView
            hidden: true
            x: 8 * root.unit
            y: overlayTopView.height
            width: selfieNumbers.width
            height: selfieNumbers.height
            DebugPanel {
                id: selfieNumbers
                Label { id: faceLivenessScoreLabel; fontSize: 12; unit: root.unit }
                Label { id: leftEyeOpenProbabilityLabel; fontSize: 12; unit: root.unit }
                Label { id: rightEyeOpenProbabilityLabel; fontSize: 12; unit: root.unit }
                Label { id: maskDetectionScoreLabel; fontSize: 12; unit: root.unit }
            }
        }
    }

    View {
        id: idOverlayView
        anchors.fill: parent
        alpha: 0

        Shade {
            anchors.fill: parent
            color: "#66000000"
            opening: Qt.rect(idFrameImageView.x, idFrameImageView.y, idFrameImageView.width, idFrameImageView.height)
            radius: idFrameImageView.corner
        }
        Picture {
            id: idFrameImageView
            readonly property real corner: height * 0.06
            readonly property real bottomEdge: root.height * 0.94
            width: height * 85.6 / 54
            height: root.landscape ? root.width * 0.37 * 54 / 85.6
                                   : Math.min(root.width * 0.889 * 54 / 85.6, root.height * 0.316)
            x: root.landscape ? root.width * 0.6 : (root.width - width) / 2
            y: root.landscape ? root.height * 0.56 - height / 2 : bottomEdge - height
            Rectangle {
                anchors { fill: parent; margins: -border.width / 2 }
                radius: idFrameImageView.corner
                color: "transparent"
                border { color: idFrameImageView.tintColor; width: 5 * root.unit }
            }
        }
        Picture {
            id: idImageView
            anchors { fill: idFrameImageView; margins: idFrameImageView.height * 0.05 }
        }
        Pill {
            id: idOverlayLabelView
            hidden: true
            label: idOverlayLabel
            room: root.landscape ? root.width * 0.43 - 16 * root.unit : root.promptRoom
            unit: root.letters
            x: idFrameImageView.x + (idFrameImageView.width - width) / 2
            y: root.promptY(idOverlayLabelView, idFrameImageView, idLabelAboveConstraint, idLabelBelowConstraint)
            Label {
                id: idOverlayLabel
                anchors.centerIn: parent
                width: parent.width - 2 * parent.padding
                shrink: shrinkFor(parent.free, root.landscape ? 0.7 : 0.8)
                unit: root.letters
                fontSize: 20
                font.weight: Font.DemiBold
                horizontalAlignment: Text.AlignHCenter
                announced: true
                Accessible.role: Accessible.AlertMessage
            }
        }
        Bar {
            id: progressView
            hidden: true
            anchors { horizontalCenter: idFrameImageView.horizontalCenter; top: idFrameImageView.bottom; topMargin: root.gap }
            width: idFrameImageView.width
            height: 8 * root.unit
        }
        View {
            id: idDebugStackView
            hidden: true
            x: 8 * root.unit
            y: overlayTopView.height
            width: cardNumbers.width
            height: cardNumbers.height
            DebugPanel {
                id: cardNumbers
                Label { id: realnessScoresLabel; fontSize: 12; unit: root.unit }
                Label { id: topMatchesLabel; fontSize: 12; unit: root.unit }
            }
        }
    }

    View {
        id: readingTextOverlayView
        anchors.fill: parent
        alpha: 0

        Rectangle {
            id: sheet
            anchors { bottom: parent.bottom; bottomMargin: 16 * root.unit; horizontalCenter: parent.horizontalCenter }
            width: Math.min(root.width - 32 * root.unit, root.landscape ? root.width * 0.8 : 720 * root.unit)
            height: Math.min(root.height * (root.landscape ? 0.46 : 0.4) * (0.5 + 0.5 * screen.textScale),
                             root.height - overlayTopView.height - 32 * root.unit)
            radius: 18 * root.unit
            color: "#ee101820"
        }
        Label {
            id: readingTextCountdownLabel
            anchors { top: sheet.top; topMargin: root.gap; horizontalCenter: sheet.horizontalCenter }
            unit: root.letters
            fontSize: 22
            font.weight: Font.Bold
            textColor: "#ffe082"
            Accessible.name: screen.words.secondsLeft + " " + text
        }
        Flickable {
            id: page
            anchors {
                left: sheet.left; right: sheet.right; leftMargin: 20 * root.unit; rightMargin: 20 * root.unit
                top: readingTextCountdownLabel.bottom; topMargin: root.gap / 2
                bottom: doneButton.top; bottomMargin: root.gap
            }
            contentHeight: readingTextLabel.height
            clip: true
            interactive: contentHeight > height
            boundsBehavior: Flickable.StopAtBounds
            Label {
                id: readingTextLabel
                // As large as the page allows: a letter takes about 0.9 of the square of its size.
                readonly property real fitting: Math.sqrt(page.width * page.height / (0.9 * Math.max(1, [...words].length)))
                width: page.width
                height: Math.max(page.height, implicitHeight)
                unit: root.letters
                fontSize: Math.max(14, Math.min(34, fitting / root.letters))
                lineHeight: 1.15
                horizontalAlignment: Text.AlignHCenter
                verticalAlignment: Text.AlignVCenter
            }
        }
        Rectangle {
            // Where the page stands in a text that is longer than it.
            visible: page.interactive
            anchors { left: page.right; leftMargin: 6 * root.unit }
            width: 4 * root.unit
            y: page.y + page.visibleArea.yPosition * page.height
            height: page.visibleArea.heightRatio * page.height
            radius: width / 2
            color: "#b0ffffff"
        }
        PushButton {
            id: doneButton
            action: "doneReadingText"
            anchors { horizontalCenter: sheet.horizontalCenter; bottom: sheet.bottom; bottomMargin: root.gap }
            width: Math.min(sheet.width - 40 * root.unit, 260 * root.unit)
            height: implicitHeight
            unit: root.letters
        }
    }

    View {
        id: overlayTopView
        anchors { left: parent.left; right: parent.right; top: parent.top }
        height: Math.max(60, 64 * root.unit, captureLabel.height + 2 * root.gap)

        Rectangle {
            anchors.fill: parent
            gradient: Gradient {
                GradientStop { position: 0; color: "#d0000000" }
                GradientStop { position: 1; color: "#60000000" }
            }
        }
        PushButton {
            id: closeButton
            action: "close"
            anchors { left: parent.left; leftMargin: 8 * root.unit; verticalCenter: parent.verticalCenter }
            width: height
            height: Math.max(44, 44 * root.unit)
            unit: root.unit
            backgroundColor: "#66000000"
            spokenTitle: screen.words.close
            Image {
                anchors { fill: parent; margins: parent.height * 0.24 }
                source: "image://views/close"
                sourceSize: Qt.size(width, height)
            }
        }
        Label {
            id: captureLabel
            // In the middle, unless the close button is in its way.
            readonly property real free: root.width - closeButton.width - 28 * root.unit
            readonly property real middle: (root.width - width) / 2
            anchors.verticalCenter: parent.verticalCenter
            width: balancedWidth(free)
            shrink: shrinkFor(free, 0.8)
            x: screen.rightToLeft ? Math.min(middle, free + 10 * root.unit - width)
                                  : Math.max(middle, root.width - free - 10 * root.unit)
            unit: root.letters
            fontSize: 20
            font.weight: Font.DemiBold
            horizontalAlignment: Text.AlignHCenter
            announced: true
            Accessible.role: Accessible.Heading
        }
    }
}
