#include "player/PlayerController.h"
