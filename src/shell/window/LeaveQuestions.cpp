#include "shell/window/LeaveQuestions.h"

#include "shell/overlays/LeavePagePrompt.h"
#include "shell/tab/BrowserTab.h"

namespace velder {

LeaveQuestions::LeaveQuestions(GtkWindow* window, ShowTab showTab)
    : m_window(window)
    , m_showTab(std::move(showTab))
{
}

LeaveQuestions::~LeaveQuestions() = default;

void LeaveQuestions::ask(BrowserTab& tab, Answer answer)
{
    if (m_leavingAll) {
        answer(true);
        return;
    }
    m_waiting.push_back({ tab.weak_from_this(), std::move(answer) });
    if (!m_prompt) {
        showNext();
    }
}

void LeaveQuestions::leaveAll()
{
    m_leavingAll = true;
    if (m_prompt) {
        m_prompt->answer(true); // which goes on to the waiting ones
    } else {
        showNext();
    }
}

void LeaveQuestions::showNext()
{
    while (!m_waiting.empty()) {
        Question question = std::move(m_waiting.front());
        m_waiting.pop_front();
        auto tab = question.tab.lock();
        if (m_leavingAll) {
            question.answer(true);
            continue;
        }
        if (!tab) {
            continue; // its page is gone already: nothing to ask
        }
        m_showTab(*tab);
        // The prompt calls back once and touches nothing of its own afterwards, so it may go right then.
        m_prompt = std::make_unique<LeavePagePrompt>(m_window, [this, answer = std::move(question.answer)](bool leave) {
            answer(leave);
            m_prompt.reset();
            showNext();
        });
        return;
    }
}

} // namespace velder
