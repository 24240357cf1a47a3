#pragma once

// The last part of a step: each contact, in list order, is reported to both colliders' handlers and then
// answered with one impulse along the contact normal. Later contacts see the velocities that earlier ones
// left, so the list order is part of the outcome.

#include "Physics/Contact.h"

#include <vector>

class Space;

namespace Physics
{

class CollisionListener;

// Answers the contacts of the space; the listener may be null, and then no handler hears of them.
void RespondToContacts(Space& space, const std::vector<Contact>& contacts, CollisionListener* listener);

} // namespace Physics
