#include "Physics/Contact.h"

#include "Physics/VectorMath.h"

#include <cmath>

namespace Physics
{

bool CollideCircles(Vec2 a, float radiusA, Vec2 b, float radiusB, Contact& contact)
{
    const Vec2 d = b - a;
    const float reach = radiusA + radiusB;
    const float squaredDistance = Dot(d, d);
    // Worded as the test for no contact, so that a NaN anywhere makes a contact.
    if (reach * reach < squaredDistance)
    {
        return false;
    }
    contact.penetration = squaredDistance == 0.0f ? radiusA : reach - std::sqrt(squaredDistance);
    contact.point = a + Scale(Normalise(d), radiusA);
    return true;
}

} // namespace Physics
