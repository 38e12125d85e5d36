/// An operator who answers every message box at once and records its text; no window is shown.
#pragma once

#include "text/message_box.h"

#include <QStringList>

#include <utility>
#include <vector>

class User {
public:
    User() {
        setMessageBoxes([this](const MessageBox& box) {
            boxes_.push_back(box);
            return nextAnswer();
        });
    }
    virtual ~User() { setMessageBoxes({}); }
    User(const User&) = delete;
    User& operator=(const User&) = delete;

    /// Answers the next box; later boxes get OK.
    void answerNext(MsgBoxResult answer) { next_ = answer; }

    const std::vector<MessageBox>& boxes() const { return boxes_; }

    /// Texts of the boxes since the last call, with " / " for a line break.
    QStringList said() {
        QStringList texts;
        for (; told_ < boxes_.size(); ++told_)
            texts += boxes_[told_].text;
        return texts.replaceInStrings("\n", " / ");
    }

protected:
    MsgBoxResult nextAnswer() { return std::exchange(next_, kOk); }

    std::vector<MessageBox> boxes_;

private:
    std::size_t told_ = 0;
    MsgBoxResult next_ = kOk;
};
