#include "MMCommand.h"

MMCommand::~MMCommand() = default;
