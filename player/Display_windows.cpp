#include "Display.h"

bool isDisplayMissing()
{
    return false;
}
