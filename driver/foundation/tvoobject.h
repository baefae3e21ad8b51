// TVOObject: the base of the driver's objects that are released through a base pointer.
#pragma once

class TVOObject
{
public:
    virtual ~TVOObject() {}
};
