#include "rycore/scene/RyRiggingEdit.h"

#include "rycore/scene/RyScene.h"

RyRiggingEdit::RyRiggingEdit() : m_scene(ryScene()), m_period(m_scene->m_riggingEdits.period())
{
    m_scene->beginRiggingEdit();
}

RyRiggingEdit::~RyRiggingEdit()
{
    if (m_scene && m_scene->m_riggingEdits.period() == m_period)
        m_scene->finishRiggingEdit();
}
