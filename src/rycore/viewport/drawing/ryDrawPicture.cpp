#include "rycore/viewport/RyGL.h"

#include "rycore/viewport/drawing/ryDrawPicture.h"

void ryDrawPicture(unsigned texture)
{
    static const float corners[4][2] = {{-1, -1}, {1, -1}, {1, 1}, {-1, 1}};
    static const float coordinates[4][2] = {{0, 0}, {1, 0}, {1, 1}, {0, 1}};
    glPushAttrib(GL_ALL_ATTRIB_BITS);
    for (GLenum capability : {GL_DEPTH_TEST, GL_LIGHTING, GL_CULL_FACE})
        glDisable(capability);
    glPolygonMode(GL_FRONT_AND_BACK, GL_FILL);
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    glEnable(GL_TEXTURE_2D);
    glBindTexture(GL_TEXTURE_2D, texture);
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_REPLACE);
    glEnableClientState(GL_VERTEX_ARRAY);
    glEnableClientState(GL_TEXTURE_COORD_ARRAY);
    glVertexPointer(2, GL_FLOAT, 0, corners);
    glTexCoordPointer(2, GL_FLOAT, 0, coordinates);
    glDrawArrays(GL_QUADS, 0, 4);
    glDisableClientState(GL_VERTEX_ARRAY);
    glDisableClientState(GL_TEXTURE_COORD_ARRAY);
    glPopAttrib();
}
