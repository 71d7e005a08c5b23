#include <XeltRender.hpp>

int main()
{
    return xelt::Renderer().widgetRect() ? 1 : 0;
}
