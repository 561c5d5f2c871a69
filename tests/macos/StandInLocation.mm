#import <CoreLocation/CoreLocation.h>

@implementation CLLocation
@synthesize coordinate = _coordinate, altitude = _altitude, verticalAccuracy = _verticalAccuracy;
- (instancetype)initWithCoordinate:(CLLocationCoordinate2D)coordinate
                          altitude:(CLLocationDistance)altitude
                horizontalAccuracy:(CLLocationAccuracy)horizontalAccuracy
                  verticalAccuracy:(CLLocationAccuracy)verticalAccuracy
                         timestamp:(NSDate*)timestamp {
    self = [super init];
    _coordinate = coordinate;
    _altitude = altitude;
    _verticalAccuracy = verticalAccuracy;
    return self;
}
@end

CLLocationCoordinate2D CLLocationCoordinate2DMake(CLLocationDegrees latitude,
                                                  CLLocationDegrees longitude) {
    return {latitude, longitude};
}

BOOL CLLocationCoordinate2DIsValid(CLLocationCoordinate2D place) {
    return place.latitude >= -90 && place.latitude <= 90 && place.longitude >= -180 &&
           place.longitude <= 180;
}
