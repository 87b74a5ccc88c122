#pragma once

#include "RySkinPeers.h"

#include <memory>

/// The software skinning of Ogre, where its library was found when this was built. It takes four influences at most and
/// makes the normals unit vectors.
class RyOgrePeer
{
public:
    static bool isThere();
    explicit RyOgrePeer(const RySkinWorkload &work);
    ~RyOgrePeer();

    void blend(int pose);
    const RySkinPeer &result() const;

private:
    struct Arrays;
    std::unique_ptr<Arrays> m_arrays;
};
