#pragma once
// The book's word on a position, for whoever reads along.

#include "engine/engine.h"

namespace quon {

// Opens the book that the settings name and says what is wrong with it.
void load_book(Engine& engine);

// A move that the book offers for the game's position, drawn at random; NO_MOVE without one. Prints
// what the book knows of every move.
Move book_pick(Engine& engine);
// The same for a person to see; with `announce` the choice is printed as well.
void book_show(Engine& engine, bool announce);

}  // namespace quon
