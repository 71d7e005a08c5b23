#include <XeltRender.h>

int main()
{
    return Xelt_Release(nullptr) == -1 ? 0 : 1;
}
