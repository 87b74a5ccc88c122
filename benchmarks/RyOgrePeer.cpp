#include "RyOgrePeer.h"

#ifdef RY_WITH_OGRE

#include <OgreMatrix4.h>
#include <OgreOptimisedUtil.h>

struct RyOgrePeer::Arrays
{
    const RySkinWorkload &work;
    RySkinPeer result;
    std::vector<unsigned char> bones;
    std::vector<Ogre::Affine3, Eigen::aligned_allocator<Ogre::Affine3>> maps[2];
    std::vector<const Ogre::Affine3 *> places[2];
};

bool RyOgrePeer::isThere()
{
    return true;
}

RyOgrePeer::RyOgrePeer(const RySkinWorkload &work) : m_arrays(new Arrays{work, RySkinPeer(work), {}, {}, {}})
{
    m_arrays->bones.assign(work.bones.begin(), work.bones.end());
    for (int pose = 0; pose < 2; ++pose) {
        for (const Eigen::Matrix4f &m : work.matrices[pose]) {
            m_arrays->maps[pose].emplace_back(m(0, 0), m(0, 1), m(0, 2), m(0, 3), m(1, 0), m(1, 1), m(1, 2), m(1, 3),
                                              m(2, 0), m(2, 1), m(2, 2), m(2, 3));
        }
        for (const Ogre::Affine3 &map : m_arrays->maps[pose])
            m_arrays->places[pose].push_back(&map);
    }
}

void RyOgrePeer::blend(int pose)
{
    const RySkinWorkload &work = m_arrays->work;
    RySkinPeer &to = m_arrays->result;
    const size_t influences = size_t(work.influenceCount);
    Ogre::OptimisedUtil::getImplementation()->softwareVertexSkinning(
        &work.positions[0].x, &to.positions[0].x, &work.normals[0].x, &to.normals[0].x, work.weights.data(),
        m_arrays->bones.data(), m_arrays->places[pose].data(), sizeof(RyVec3), sizeof(RyVec3), sizeof(RyVec3),
        sizeof(RyVec3), influences * sizeof(float), influences, influences, work.positions.size());
}

const RySkinPeer &RyOgrePeer::result() const
{
    return m_arrays->result;
}

#else

struct RyOgrePeer::Arrays
{
    RySkinPeer result;
};

bool RyOgrePeer::isThere()
{
    return false;
}

RyOgrePeer::RyOgrePeer(const RySkinWorkload &work) : m_arrays(new Arrays{RySkinPeer(work)}) {}

void RyOgrePeer::blend(int) {}

const RySkinPeer &RyOgrePeer::result() const
{
    return m_arrays->result;
}

#endif

RyOgrePeer::~RyOgrePeer() = default;
