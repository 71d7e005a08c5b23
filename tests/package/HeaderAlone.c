#include <XeltRender.h>

int main(void)
{
    return Xelt_Release(NULL) == -1 ? 0 : 1;
}
