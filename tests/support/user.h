/// An operator who answers every message box at once and remembers what it said; no window is shown.
#pragma once

#include "text/message_box.h"

#include <QStringList>

#include <deque>
#include <vector>

/// Answers boxes for as long as it lives.
class User {
public:
    User() {
        setMessageBoxes([this](const MessageBox& box) {
            boxes_.push_back(box);
            const MsgBoxResult answer = answers_.empty() ? kOk : answers_.front();
            if (!answers_.empty())
                answers_.pop_front();
            return answer;
        });
    }
    ~User() { setMessageBoxes({}); }
    User(const User&) = delete;
    User& operator=(const User&) = delete;

    /// Answers the next box that has not got its answer yet; later boxes get OK.
    void answerNext(MsgBoxResult answer) { answers_.push_back(answer); }

    const std::vector<MessageBox>& boxes() const { return boxes_; }

    /// Texts of the boxes since the last call, in order, with " / " for a line break.
    QStringList said() {
        QStringList texts;
        for (; told_ < boxes_.size(); ++told_)
            texts += boxes_[told_].text;
        return texts.replaceInStrings("\n", " / ");
    }

private:
    std::vector<MessageBox> boxes_;
    std::size_t told_ = 0;
    std::deque<MsgBoxResult> answers_;
};
