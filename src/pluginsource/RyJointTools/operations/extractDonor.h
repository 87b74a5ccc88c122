#pragma once

class RyFigure;

/// Adds a figure to the scene that has the bones of another one, with its rigging as it is and its weights and bulges,
/// but no mesh and no pose: something to place bones on and to transfer from. Named "Donor_NAME" and labelled "Donor
/// LABEL", both unique among the top-level nodes. What hangs on bones and is no bone is left out. The selection stays.
RyFigure *extractDonor(const RyFigure &source);
