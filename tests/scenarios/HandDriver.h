// A person's hand on the dialogs: each step becomes the mouse and key
// events a person would make (QTest's, sent to the real widgets), taken by
// whichever dialog is top-most when the step's turn comes, as a script's
// lines are. A timer looks every few milliseconds, inside whatever dialog's
// event loop runs then.
#pragma once

#include "Steps.h"

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

#include <deque>
#include <functional>

class QWidget;

namespace scenario {

class HandDriver : public QObject {
public:
    explicit HandDriver(const std::vector<Step>& steps);

    void start();
    // True once every gesture is made and no dialog is open.
    bool idle() const;
    // Stops; true when every gesture was made and no dialog was left open.
    bool finish();

private:
    // Makes its events on the top-most dialog; returns how long a person
    // pauses before the next gesture (milliseconds).
    using Gesture = std::function<int(QWidget& dialog)>;
    void add(const Step& step);
    void tick();

    std::deque<Gesture> gestures_;
    QTimer timer_;
    QElapsedTimer sinceLast_;
    int pauseMs_ = 0;
    bool leftOpen_ = false;
};

}  // namespace scenario
