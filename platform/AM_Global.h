// The applications that have a settings file of their own.
#pragma once

/// Names of the application manager.
class AM_Global
{
public:
    /// The number of an application; it selects the application's settings file.
    enum Apps : int {};
};
