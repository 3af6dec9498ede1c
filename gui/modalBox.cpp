#include "gui/modalBox.h"

namespace tolm::gui {

void drawModalBox(Canvas& canvas, const Style& style, const ModalBox& box, std::string_view title)
{
    const Rect& panel = box.panel;
    canvas.fillRect(box.window, style.shade);
    canvas.fillRoundRect(panel, style.panelRadius,
                         Paint::linear(panel.origin(), {panel.x, panel.bottom()}, style.panelTop,
                                       style.panelBottom));
    canvas.strokeRoundRect(panel, style.panelRadius, 1.0f, style.edge);
    TextStyle titleStyle = style.title;
    titleStyle.size = 13.0f;
    titleStyle.tracking = 0.0f;
    canvas.textIn(title, box.title, titleStyle, style.text);
}

} // namespace tolm::gui
